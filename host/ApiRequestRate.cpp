#include "host/ApiRequestRate.h"

namespace Host {
namespace {
constexpr size_t fewUsers = 64;  // as many buckets are kept without looking
}  // namespace

bool ApiRequestRate::take(uid_t user, double now) {
   auto at = buckets_.find(user);
   if (at == buckets_.end()) {
      if (buckets_.size() >= fewUsers) forgetFull(now);
      at = buckets_.emplace(user, TokenBucket(burst_, perSecond_, now)).first;
   }
   return at->second.take(now);
}

// A bucket that is full again says no more than one that is not there.
void ApiRequestRate::forgetFull(double now) {
   std::erase_if(buckets_, [now](const auto& entry) { return entry.second.full(now); });
}

}  // namespace Host
