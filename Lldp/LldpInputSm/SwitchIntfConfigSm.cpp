#include "Lldp/LldpInputSm/SwitchIntfConfigSm.h"

#include "Lldp/LldpInputSm/Lag.h"
#include "Lldp/LldpInputSm/PortConfigSync.h"
#include "Lldp/LldpInputSm/Root.h"
#include "Rex/Assert.h"
#include "Rex/Trace.h"
#include "Wirekit/PortChannelIntfId.h"

namespace Lldp::Agent::Input {
namespace {

const Rex::TraceHandle trace("LldpAgent", false);

constexpr Bridging::VlanIdOrNone noVlan(0);

}  // namespace

SwitchIntfConfigSm::SwitchIntfConfigSm(Bridging::SwitchIntfConfig::PtrConst switchIntfConfig,
                                       Rex::Ptr<Root> root)
    : switchIntfConfig_(std::move(switchIntfConfig)), root_(std::move(root)) {
   on(switchIntfConfig_, Bridging::SwitchIntfConfig::switchportModeAttr,
      &SwitchIntfConfigSm::handleSwitchportModeAndNativeVlan);
   on(switchIntfConfig_, Bridging::SwitchIntfConfig::nativeVlanAttr,
      &SwitchIntfConfigSm::handleSwitchportModeAndNativeVlan);

   handleInitialized();
}

SwitchIntfConfigSm::~SwitchIntfConfigSm() = default;

void SwitchIntfConfigSm::handleInitialized() {
   TRACE(trace, 8, "SwitchIntfConfigSm::handleInitialized() for " << intfId());
   if (Wirekit::PortChannelIntfId::isPortChannelIntfId(intfId())) {
      for (auto [portId, lags] : root_->portToLagsMap()) {
         if (portToLag(portId, root_) == intfId()) associatedIntfIdIs(portId, true);
      }
   } else if (!root_->portToLagsMap(intfId())) {
      associatedIntfIdIs(intfId(), true);
   }
   handleSwitchportModeAndNativeVlan();
}

// The port's own row is derived anew also when a group governs the port: it costs little, and a
// group has no such row.
void SwitchIntfConfigSm::handleSwitchportModeAndNativeVlan() {
   TRACE(trace, 8, "SwitchIntfConfigSm::handleSwitchportModeAndNativeVlan() for " << intfId());
   for (auto [portId, value] : associatedIntfId_) {
      if (auto localPort = root_->localSystem()->localPort(portId)) doSyncLocalPort(localPort);
   }
   if (auto portConfig = root_->config()->portConfig(intfId())) syncPortConfig(portConfig, root_);
}

void SwitchIntfConfigSm::doSyncLocalPort(const LocalPort::Ptr& localPort) {
   REX_ASSERT_AS(associatedIntfIdHas(localPort->intfId()),
                 "associatedIntfIdHas( localPort->intfId() )");
   if (switchIntfConfig_->switchportMode() == Bridging::switchportRouted) {
      localPort->portVlanIdIs(noVlan);
   } else {
      localPort->portVlanIdIs(Bridging::VlanIdOrNone(switchIntfConfig_->nativeVlan().value()));
   }
   // Whether the port transmits follows the mode.
   if (auto portConfig = root_->config()->portConfig(localPort->intfId())) {
      syncPortConfig(portConfig, root_);
   }
}

void SwitchIntfConfigSm::doAddPort(const Wirekit::IntfId& portId) {
   TRACE(trace, 8, "SwitchIntfConfigSm::doAddPort( " << portId << " ) for " << intfId());
   REX_ASSERT_AS(!associatedIntfIdHas(portId), "!associatedIntfIdHas( portId )");
   associatedIntfIdIs(portId, true);
   if (auto localPort = root_->localSystem()->localPort(portId)) doSyncLocalPort(localPort);
}

// What governs the port from here on writes its own VLAN in the same reaction.
void SwitchIntfConfigSm::doRemovePort(const Wirekit::IntfId& portId) {
   TRACE(trace, 8, "SwitchIntfConfigSm::doRemovePort( " << portId << " ) for " << intfId());
   associatedIntfIdDel(portId);
   if (auto localPort = root_->localSystem()->localPort(portId)) localPort->portVlanIdIs(noVlan);
}

}  // namespace Lldp::Agent::Input
