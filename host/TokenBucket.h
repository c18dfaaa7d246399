// A budget that time fills again: `burst` at once, `perSecond` in the long run.
#pragma once

#include <algorithm>

namespace Host {

class TokenBucket {
 public:
   // Full at `now`, in seconds.
   TokenBucket(double burst, double perSecond, double now)
       : burst_(burst), perSecond_(perSecond), level_(burst), time_(now) {}

   // Takes one; false when there is none left.
   bool take(double now) {
      level_ = levelAt(now);
      time_ = now;
      if (level_ < 1) return false;
      level_ -= 1;
      return true;
   }
   bool full(double now) const { return levelAt(now) >= burst_; }

 private:
   double levelAt(double now) const {
      return std::min(burst_, level_ + (now - time_) * perSecond_);
   }

   double burst_;
   double perSecond_;
   double level_;
   double time_;
};

}  // namespace Host
