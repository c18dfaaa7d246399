// Ports on simulated wires, and what makes them.
#pragma once

#include <map>

#include "Interface/PamMaker.h"
#include "Interface/Segment.h"

namespace Interface {

class SegmentPam : public Wirekit::Pam {
 public:
   SegmentPam(const Wirekit::IntfId& intfId, const PamConfig& config, bool untags,
              Segment::Ptr segment);
   ~SegmentPam() override;

   // The wire that the port is plugged into; null for none.
   void segmentIs(Segment::Ptr segment);

 private:
   friend class Segment;
   // A frame arrives: it passes what a device and a packet socket would do to it.
   void arrive(std::span<const uint8_t> octets);
   void doTransmit(Wirekit::Pkt& pkt) override;
   void doClose() override { segmentIs(nullptr); }

   const PamConfig config_;
   const bool untags_;
   Segment::Ptr segment_;
};

// One agent's devices. A device that was never plugged in cannot be opened.
class SegmentPamMaker : public PamMaker {
 public:
   // Whether devices take an 802.1Q tag out of the frame, where that is asked for.
   bool untags = true;

   // Plugs a device into a wire, or with null pulls it out. An open port follows.
   void plug(const Rex::String& deviceName, Segment::Ptr segment);
   Made make(const DeviceIntfStatus& device, const PamConfig& config) override;

 private:
   struct Device {
      Segment::Ptr segment;
      Rex::Ptr<SegmentPam> pam;  // the one opened last
   };
   std::map<Rex::String, Device> devices_;
};

}  // namespace Interface
