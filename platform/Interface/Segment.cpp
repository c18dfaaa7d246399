#include "Interface/Segment.h"

#include "Interface/SegmentPam.h"

namespace Interface {

Segment::Segment(Rex::Ptr<Rex::Clock> clock) : clock_(clock), timer_(clock) {
   timer_.handlerIs(nullptr, [this] { handleArrivals(); });
}

Segment::~Segment() = default;

void Segment::send(std::span<const uint8_t> octets, const SegmentPam* from) {
   Frame made{clock_->now(), {octets.begin(), octets.end()}};
   auto frame = std::make_shared<const Frame>(std::move(made));
   if (tap) tap(*frame);
   for (SegmentPam* to : ports_) {
      if (to == from) continue;
      std::vector<double> delays = fate ? fate(*frame, *to) : std::vector<double>{delay};
      for (double copy : delays) inFlight_.emplace(frame->time + copy, Arrival{frame, to});
   }
   rearm();
}

void Segment::rearm() {
   if (inFlight_.empty()) {
      timer_.cancel();
   } else if (!timer_.armed() || timer_.timeMin() != inFlight_.begin()->first) {
      timer_.timeMinIs(inFlight_.begin()->first);
   }
}

void Segment::handleArrivals() {
   Ptr stays(this);
   // An arrival only makes the frame wait at its port, so nothing is sent in this walk.
   while (!inFlight_.empty() && inFlight_.begin()->first <= clock_->now()) {
      Arrival arrival = std::move(inFlight_.begin()->second);
      inFlight_.erase(inFlight_.begin());
      arrival.to->arrive(arrival.frame->octets);
   }
   rearm();
}

void Segment::leave(SegmentPam& pam) {
   std::erase(ports_, &pam);
   std::erase_if(inFlight_, [&](const auto& entry) { return entry.second.to == &pam; });
   rearm();
}

}  // namespace Interface
