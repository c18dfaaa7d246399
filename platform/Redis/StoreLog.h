// What the operator reads about the state store: one line when it goes away, however often it is
// tried again, and one when it is back.
#pragma once

#include <set>
#include <string>

#include "Rex/Log.h"

namespace Redis {

class StoreLog {
 public:
   explicit StoreLog(std::string store) : store_(std::move(store)) {}

   // It could not be reached, `wasUp`: any more. `why` is the system's or the server's word.
   void broken(const std::string& why, bool wasUp);
   void works();
   void refused(const std::string& why);
   void taken();
   void malformed(const std::string& id);

 private:
   void tell(const Rex::LogHandle& handle, const std::string& why);

   const std::string store_;
   std::set<const Rex::LogHandle*> told_;  // since it worked last
   bool works_ = false;
   bool refused_ = false;
};

}  // namespace Redis
