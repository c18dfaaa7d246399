#include "Rex/Clock.h"

#include "Rex/Assert.h"
#include "Rex/Context.h"
#include "Rex/Dispatcher.h"
#include "Rex/StateMachine.h"

namespace Rex {

Timer::Timer(Ptr<Clock> clock) : clock_(std::move(clock)) {}

Timer::~Timer() {
   cancel();
}

void Timer::cancel() {
   if (armed()) hook_.unlink();
}

void Timer::timeMinIs(double time) {
   cancel();
   timeMin_ = time;
   if (time != never) clock_->arm(*this);
}

void Timer::handlerIs(StateMachine* machine, std::function<void()> run) {
   machine_ = machine;
   run_ = std::move(run);
}

double Clock::nextTime() const {
   return timers_.empty() ? never : timers_.begin()->timeMin_;
}

void Clock::arm(Timer& timer) {
   timer.armed_ = ++armings_;
   (passing_ ? fresh_ : timers_).insert(timer);
}

// The pass ends also when an exception that a test expects passes through.
struct Clock::Pass {
   explicit Pass(Clock& clock) : clock(clock) {
      REX_ASSERT(!clock.passing_);
      clock.passing_ = true;
   }
   ~Pass() {
      clock.passing_ = false;
      clock.timers_.merge(clock.fresh_);
   }
   Clock& clock;
};

size_t Clock::runDue() {
   double now = this->now();
   size_t ran = 0;
   Pass pass(*this);
   while (!timers_.empty() && timers_.begin()->timeMin_ <= now) {
      Timer& timer = *timers_.begin();
      timers_.erase(timers_.begin());
      run(timer);
      ++ran;
   }
   return ran;
}

void Clock::run(Timer& timer) {
   if (!timer.run_) return;
   Dispatcher::run([&timer] {
      Ptr<StateMachine> machine(timer.machine_);
      if (machine) {
         ContextScope scope(machine->context());
         timer.run_();
      } else {
         // Without a machine nothing holds the timer, which its handler may destroy.
         auto handler = timer.run_;
         handler();
      }
   });
}

}  // namespace Rex
