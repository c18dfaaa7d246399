// A simulated stretch of wire that joins the ports of any number of agents. A frame that one port
// sends reaches every other port, later, from a timer: never from inside the send. Nothing is left
// to chance: what happens to a frame is said by `fate`, and frames that are due together arrive in
// the order of their sending.
#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <span>
#include <vector>

#include "Interface/PamMaker.h"
#include "Rex/Clock.h"

namespace Interface {

class SegmentPam;

class Segment : public Rex::PtrInterface {
 public:
   using Ptr = Rex::Ptr<Segment>;
   struct Frame {
      double time;  // when it was sent, seconds
      std::vector<uint8_t> octets;
   };

   // `clock`: the one whose timers carry the frames.
   explicit Segment(Rex::Ptr<Rex::Clock> clock);
   ~Segment() override;

   // Seconds from sending to arrival.
   double delay = 0;
   // For each port that a frame is on its way to: the delays of the copies that arrive there. An
   // empty answer loses the frame, two copies duplicate it, unequal delays reorder. Unset: one copy
   // after `delay`.
   std::function<std::vector<double>(const Frame& frame, const Wirekit::Pam& to)> fate;
   // Sees every frame at its sending.
   std::function<void(const Frame& frame)> tap;

   // Sends a frame that comes from none of the ports.
   void frameIs(std::span<const uint8_t> octets) { send(octets, nullptr); }
   // Frames that are on their way.
   size_t framesInFlight() const { return inFlight_.size(); }

 private:
   friend class SegmentPam;
   struct Arrival {
      std::shared_ptr<const Frame> frame;
      SegmentPam* to;
   };

   void send(std::span<const uint8_t> octets, const SegmentPam* from);
   void handleArrivals();
   void rearm();
   void leave(SegmentPam& pam);

   Rex::Ptr<Rex::Clock> clock_;
   Rex::Timer timer_;
   std::multimap<double, Arrival> inFlight_;
   std::vector<SegmentPam*> ports_;
};

}  // namespace Interface
