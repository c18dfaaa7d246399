// How many requests each user of the machine may still send: a bucket for each user id, which a
// request takes one from and time fills again.
#pragma once

#include <sys/types.h>

#include <map>

#include "host/ApiLimits.h"
#include "host/TokenBucket.h"

namespace Host {

class ApiRequestRate {
 public:
   explicit ApiRequestRate(const ApiLimits& limits = {})
       : burst_(limits.requestBurst), perSecond_(limits.requestsPerSecond) {}

   // Takes one request's share; false when there is none left at `now`, in seconds.
   bool take(uid_t user, double now);
   // Buckets that are kept.
   size_t users() const { return buckets_.size(); }

 private:
   void forgetFull(double now);

   const double burst_;
   const double perSecond_;
   std::map<uid_t, TokenBucket> buckets_;
};

}  // namespace Host
