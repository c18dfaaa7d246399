#include "Lldp/LldpProtocolSm/LocalPortSm.h"

#include "Lldp/LldpProtocolSm/Root.h"
#include "Rex/Trace.h"

namespace Lldp::Agent::Protocol {
namespace {

const Rex::TraceHandle trace("LldpAgent", false);

}  // namespace

// `medCapabilities` is not watched: it changes together with the port's network policies, whose
// keys are.
LocalPortSm::LocalPortSm(Lldp::LocalPort::PtrConst localPort, Rex::Ptr<Root> root)
    : localPort_(std::move(localPort)), root_(std::move(root)) {
   on(localPort_, LocalPort::portIdentifierAttr, &LocalPortSm::handleLocalPortAttrs);
   on(localPort_, LocalPort::portDescAttr, &LocalPortSm::handleLocalPortAttrs);
   on(localPort_, LocalPort::portVlanIdAttr, &LocalPortSm::handleLocalPortAttrs);
   on(localPort_, LocalPort::linkAggregationInfoAttr, &LocalPortSm::handleLocalPortAttrs);
   on(localPort_, LocalPort::maximumFrameSizeInfoAttr, &LocalPortSm::handleLocalPortAttrs);
   on(localPort_, LocalPort::unknownOrgDefTlvAttr, &LocalPortSm::handleLocalPortAttrs);
   on(localPort_, LocalPort::localNetworkPolicyTlvAttr, &LocalPortSm::handleLocalPortAttrs);
   on(localPort_, LocalPort::localPortPoeInfoAttr, &LocalPortSm::handleLocalPortPoE);

   handleInitialized();
}

LocalPortSm::~LocalPortSm() = default;

// Power information that stands already has no machine until it changes.
void LocalPortSm::handleInitialized() {
   TRACE(trace, 8, "LocalPortSm::handleInitialized()");
}

void LocalPortSm::handleLocalPortAttrs() {
   TRACE(trace, 8, "LocalPortSm::handleLocalPortAttrs()");
   handleLocalPortAttrsChanged(root(), intfId());
}

void LocalPortSm::handleLocalPortPoE() {
   TRACE(trace, 8, "LocalPortSm::handleLocalPortPoE()");
   if (const auto& localPortPoeInfo = localPort()->localPortPoeInfo()) {
      localPortPoeInfoSmIs(localPortPoeInfo, intfId(), root());
   } else {
      localPortPoeInfoSmDel();
   }
}

void LocalPortSm::doClose() {
   localPortPoeInfoSmDel();
}

void handleLocalPortAttrsChanged(const Rex::Ptr<Root>& root, const Wirekit::IntfId& intfId) {
   TRACE(trace, 8, "LocalPortSm::handleLocalPortAttrs()");
   if (auto sm = root->protocolSm()->lldpPamSm(intfId)) sm->doProcessSomethingChangedLocal();
}

}  // namespace Lldp::Agent::Protocol
