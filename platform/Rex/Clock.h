// The clock of an agent: time, and the heap of its timers.
#pragma once

#include <boost/intrusive/set.hpp>
#include <cstdint>
#include <memory>

#include "Rex/Ptr.h"
#include "Rex/Timer.h"

namespace Rex {

// Where the time comes from: the platform's clock in the process, the hand of a test in tests.
class TimeSource {
 public:
   virtual ~TimeSource() = default;
   // Absolute seconds; never runs backwards.
   virtual double now() const = 0;
};

// Time that stands until it is moved by hand.
class ManualTime : public TimeSource {
 public:
   explicit ManualTime(double start = 1e6) : now_(start) {}
   double now() const override { return now_; }
   void nowIs(double now) { now_ = now; }

 private:
   double now_;
};

class Clock : public PtrInterface {
 public:
   explicit Clock(std::shared_ptr<TimeSource> source) : source_(std::move(source)) {}

   double now() const { return source_->now(); }
   // When the next timer is due; infinity if none is armed.
   double nextTime() const;
   // One pass: runs every timer that is due, each as a reaction of its own, ordered by time and
   // then by arming. A timer armed during the pass waits for the next one, so that an interval of
   // 0 cannot spin within a pass. Returns how many ran.
   size_t runDue();

 private:
   friend class Timer;
   struct Earlier {
      bool operator()(const Timer& a, const Timer& b) const {
         return a.timeMin_ != b.timeMin_ ? a.timeMin_ < b.timeMin_ : a.armed_ < b.armed_;
      }
   };
   using Heap = boost::intrusive::multiset<
       Timer, boost::intrusive::member_hook<Timer, Timer::Hook, &Timer::hook_>,
       boost::intrusive::compare<Earlier>, boost::intrusive::constant_time_size<false>>;

   struct Pass;
   void arm(Timer& timer);
   static void run(Timer& timer);

   std::shared_ptr<TimeSource> source_;
   Heap timers_;
   Heap fresh_;  // armed during the pass that is on
   bool passing_ = false;
   uint64_t armings_ = 0;
};

}  // namespace Rex
