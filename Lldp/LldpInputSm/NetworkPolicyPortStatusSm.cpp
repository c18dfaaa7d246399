#include "Lldp/LldpInputSm/NetworkPolicyPortStatusSm.h"

#include "Lldp/LldpInputSm/NetworkPolicy.h"
#include "Lldp/LldpInputSm/NetworkPolicySm.h"
#include "Rex/Trace.h"

namespace Lldp::Agent::Input {
namespace {

const Rex::TraceHandle trace("LldpAgent", false);

}  // namespace

NetworkPolicyPortStatusSm::NetworkPolicyPortStatusSm(const Wirekit::IntfId& intfId,
                                                     Lldp::PortStatus::PtrConst portStatus,
                                                     Lldp::LocalSystem::Ptr localSystem,
                                                     Lldp::Config::PtrConst config,
                                                     NetworkPolicySm* parent)
    : RemoteSystemsSm(std::move(portStatus)),
      intfId_(intfId),
      localSystem_(std::move(localSystem)),
      config_(std::move(config)),
      parent_(parent) {
   doFollow();
}

NetworkPolicyPortStatusSm::~NetworkPolicyPortStatusSm() = default;

// What a new neighbour asks for is reported behind its coming.
void NetworkPolicyPortStatusSm::doAdd(const RemoteSystem::PtrConst& remoteSystem) {
   on(remoteSystem, RemoteSystem::networkPolicyTlvAttr,
      &NetworkPolicyPortStatusSm::handleNetworkPolicyTlv);
}

void NetworkPolicyPortStatusSm::doRemove(const RemoteSystem::PtrConst&) {}

void NetworkPolicyPortStatusSm::handleNetworkPolicyTlv() {
   handleNetworkPolicyRequest(intfId_);
}

void NetworkPolicyPortStatusSm::handleNetworkPolicyRequest(const Wirekit::IntfId& intfId) {
   TRACE(trace, 8, "NetworkPolicyPortStatusSm::handleNetworkPolicyRequest intf " << intfId);
   parent_->doNote(intfId);
}

void NetworkPolicyPortStatusSm::doSync() {
   NetworkPolicy::doSyncLocalNetworkPolicy(intfId_, config_->portConfig(intfId_), portStatus(),
                                           localSystem_->localPort(intfId_));
}

}  // namespace Lldp::Agent::Input
