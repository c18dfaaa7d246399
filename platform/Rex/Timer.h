// Timers: notifiees of the one clock on which all of an agent's timers stand.
#pragma once

#include <boost/intrusive/set.hpp>
#include <cstdint>
#include <functional>
#include <limits>

#include "Rex/Ptr.h"

namespace Rex {

class Clock;
class StateMachine;

constexpr double never = std::numeric_limits<double>::infinity();

// A one-shot timer. All times are absolute seconds on the base of System::currentTime().
class Timer {
 public:
   explicit Timer(Ptr<Clock> clock);
   ~Timer();
   Timer(const Timer&) = delete;
   Timer& operator=(const Timer&) = delete;

   // Asks for the handler to run once, as soon as the clock reaches `time`; replaces any earlier
   // request, and arms also with the time that already stands. A time at or before the present
   // means as soon as the loop next runs; plus infinity means never.
   void timeMinIs(double time);
   // The time last asked for, also after it has passed. Infinity at the start.
   double timeMin() const { return timeMin_; }
   bool armed() const { return hook_.is_linked(); }
   void cancel();

   // The handler, and the machine that has to live while it runs (null: none).
   void handlerIs(StateMachine* machine, std::function<void()> run);

 private:
   friend class Clock;
   using Hook = boost::intrusive::set_member_hook<
       boost::intrusive::link_mode<boost::intrusive::auto_unlink>>;
   Hook hook_;
   double timeMin_ = never;
   uint64_t armed_ = 0;  // order of arming, which decides between equal times
   Ptr<Clock> clock_;
   StateMachine* machine_ = nullptr;
   std::function<void()> run_;
};

}  // namespace Rex
