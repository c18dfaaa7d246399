#include "Lldp/LldpProtocolSm/Root.h"

#include "Lldp/LldpProtocolSm/Frame.h"
#include "Rex/Register.h"
#include "Rex/Trace.h"

REX_REGISTER(Lldp::Agent::Protocol::Root)

namespace Lldp::Agent::Protocol {
namespace {

const Rex::TraceHandle trace("LldpAgent", false);

// Tagged LLDP frames do not show the LLDP EtherType as their first, so the sockets see all.
constexpr uint16_t ethProtocolAll = 3;
// The largest frame of any supported MTU; also what is left of a packet's buffer for sending.
constexpr size_t maxPktData = 10236;
// Network control, the highest class of the egress queues.
constexpr int sockPrio = 7;

}  // namespace

const Interface::NetNsIntfStatusManagerRoot::Ptr& Root::intfStatusManagerRootIs(
    Interface::AllIntfStatusDir::PtrConst allIntfStatusDir,
    Interface::AllIntfStatusLocalDir::PtrConst allIntfStatusLocalDir, bool filterByNetNs) {
   if (!intfStatusManagerRoot_) {
      intfStatusManagerRoot_ = Interface::NetNsIntfStatusManagerRootIs(
          std::move(allIntfStatusDir), std::move(allIntfStatusLocalDir), "intfStatusManagerRoot",
          filterByNetNs);
   }
   return intfStatusManagerRoot_;
}

void Root::doInitializePamMan() {
   TRACE(trace, 8, "Root::doInitializePamMan()");
   Wirekit::globalPktManager().maxSharedDataIs(maxPktData);
   pamManIs(desiredIntfDir(), pamCollection(), deviceIntfStatusDir());
   pamMan()->ethProtocolIs(ethProtocolAll);
   pamMan()->separateDot1QHdrIs(true);
   pamMan()->listenAddrIs(lldpMulticastAddr);
   pamMan()->filterProgramIs(filterProgram());
   pamMan()->maxRxPktDataIs(maxPktData);
   pamMan()->sockPrioIs(sockPrio);
}

Root::Ptr rootFactory(const Rex::String& name) {
   return Rex::make<Root>(name);
}

}  // namespace Lldp::Agent::Protocol
