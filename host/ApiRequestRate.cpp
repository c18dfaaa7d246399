#include "host/ApiRequestRate.h"

#include <algorithm>

namespace Host {
namespace {
constexpr size_t fewUsers = 64;  // as many buckets are kept without looking
}  // namespace

bool ApiRequestRate::take(uid_t user, double now) {
   auto at = buckets_.find(user);
   if (at == buckets_.end()) {
      if (buckets_.size() >= fewUsers) forgetFull(now);
      at = buckets_.emplace(user, Bucket{burst_, now}).first;
   }
   Bucket& bucket = at->second;
   bucket = {levelAt(bucket, now), now};
   if (bucket.level < 1) return false;
   bucket.level -= 1;
   return true;
}

double ApiRequestRate::levelAt(const Bucket& bucket, double now) const {
   return std::min(burst_, bucket.level + (now - bucket.time) * perSecond_);
}

// A bucket that is full again says no more than one that is not there.
void ApiRequestRate::forgetFull(double now) {
   std::erase_if(buckets_, [&](const auto& entry) { return levelAt(entry.second, now) >= burst_; });
}

}  // namespace Host
