#include "Lldp/LldpInputSm/NetworkPolicySm.h"

#include "Lldp/LldpInputSm/NetworkPolicy.h"
#include "Rex/Trace.h"

namespace Lldp::Agent::Input {
namespace {

const Rex::TraceHandle trace("LldpAgent", false);

}  // namespace

NetworkPolicySm::NetworkPolicySm(Lldp::Config::PtrConst config, Lldp::Status::PtrConst status,
                                 Lldp::LocalSystem::Ptr localSystem)
    : config_(std::move(config)), status_(std::move(status)), localSystem_(std::move(localSystem)) {
   on(config_, Config::portConfigAttr, &NetworkPolicySm::handlePortConfig);
   on(status_, Status::portStatusAttr, &NetworkPolicySm::handleNetworkPolicyPortStatus);
   on(status_, StatusBase::remTablesLastChangeTimeAttr, &NetworkPolicySm::handleRequests);

   handleInitialized();
}

NetworkPolicySm::~NetworkPolicySm() = default;

void NetworkPolicySm::handleInitialized() {
   TRACE(trace, 8, "NetworkPolicySm::handleInitialized()");
   for (auto [intfId, portConfig] : config_->portConfig()) handlePortConfig(intfId);
   for (auto [intfId, portStatus] : status_->portStatus()) handleNetworkPolicyPortStatus(intfId);
}

void NetworkPolicySm::doNote(const Wirekit::IntfId& intfId) {
   if (noted_.add(intfId)) handleRequests();
}

void NetworkPolicySm::handleRequests() {
   noted_.take([this](const Wirekit::IntfId& intfId) {
      if (auto sm = networkPolicyPortStatusSm(intfId)) sm->doSync();
   });
}

void NetworkPolicySm::handlePortConfig(const Wirekit::IntfId& intfId) {
   Lldp::PortConfig::PtrConst standing = config_->portConfig(intfId);
   if (const auto* found = portConfig_.find(intfId)) {
      if (*found == standing) return;
      unwatch(*found);
      portConfig_.erase(intfId);
   }
   if (!standing) return;
   portConfig_.insert(intfId, standing);
   on(standing, PortConfig::tiaEnabledTlvsAttr, &NetworkPolicySm::handlePortConfigPolicy);
   on(standing, PortConfig::networkPolicyConfigAttr, &NetworkPolicySm::handlePortConfigPolicy);
}

void NetworkPolicySm::handlePortConfigPolicy(const Rex::Change& change) {
   handleNetworkPolicyConfig(static_cast<const PortConfig&>(change.entity).intfId());
}

void NetworkPolicySm::handleNetworkPolicyConfig(const Wirekit::IntfId& intfId) {
   TRACE(trace, 8, "NetworkPolicyConfigSm::handleNetworkPolicyConfig intf " << intfId);
   NetworkPolicy::doSyncLocalNetworkPolicy(intfId, config_->portConfig(intfId),
                                           status_->portStatus(intfId),
                                           localSystem_->localPort(intfId));
}

void NetworkPolicySm::handleNetworkPolicyPortStatus(const Wirekit::IntfId& intfId) {
   TRACE(trace, 8, "NetworkPolicyConfigSm::handleNetworkPolicyPortStatus intf " << intfId);
   Lldp::PortStatus::PtrConst portStatus = status_->portStatus(intfId);
   // A row that was made anew within one reaction is another port.
   if (auto sm = networkPolicyPortStatusSm(intfId); sm && sm->portStatus() != portStatus) {
      TRACE(trace, 8, "handleNetworkPolicyPortStatus intf " << intfId << " removing SM");
      networkPolicyPortStatusSmDel(intfId);
      if (!portStatus) return;
   }
   bool running = networkPolicyPortStatusSmHas(intfId);
   if (running == static_cast<bool>(portStatus)) {
      TRACE(trace, 8,
            "handleNetworkPolicyPortStatus intf "
                << intfId << " portStatus " << static_cast<bool>(portStatus) << " config "
                << static_cast<bool>(config_) << " portConfig "
                << static_cast<bool>(config_->portConfig(intfId)) << " already present "
                << running);
      return;
   }
   TRACE(trace, 8, "handleNetworkPolicyPortStatus intf " << intfId << " creating SM");
   networkPolicyPortStatusSmIs(intfId, intfId, portStatus, localSystem_, config_, this);
   NetworkPolicy::doSyncLocalNetworkPolicy(intfId, config_->portConfig(intfId), portStatus,
                                           localSystem_->localPort(intfId));
}

void NetworkPolicySm::doClose() {
   TRACE(trace, 8, "NetworkPolicySm::doClose()");
   for (auto [intfId, sm] : networkPolicyPortStatusSm()) networkPolicyPortStatusSmDel(intfId);
}

}  // namespace Lldp::Agent::Input
