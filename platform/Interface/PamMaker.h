// What makes packet access objects: the devices of Linux in the process, simulated wires in tests.
// The context says which, through Context::serviceIs<PamMaker>(...).
#pragma once

#include <vector>

#include "Interface/DeviceIntfStatusDir.h"
#include "Wirekit/EthAddr.h"
#include "Wirekit/Pam.h"
#include "Wirekit/SockFilterProgram.h"

namespace Interface {

// How devices are opened.
struct PamConfig {
   static constexpr uint16_t allProtocols = 3;

   uint16_t ethProtocol = allProtocols;  // EtherType that is received, in host order
   bool separateDot1QHdr = false;  // a tag is delivered beside the frame where that is possible
   Wirekit::EthAddr listenAddr;    // group address that is received too
   std::vector<Wirekit::SockFilterInstruction> filter;
   size_t maxRxPktData = 1518;  // octets; a longer frame is dropped
   int sockPrio = 0;
};

class PamMaker {
 public:
   // A packet access object, or null and why there is none.
   struct Made {
      Rex::Ptr<Wirekit::Pam> pam;
      Rex::String error;
   };

   virtual ~PamMaker() = default;
   // The context without a maker has no devices.
   virtual Made make(const DeviceIntfStatus&, const PamConfig&) { return {nullptr, "no devices"}; }
};

}  // namespace Interface
