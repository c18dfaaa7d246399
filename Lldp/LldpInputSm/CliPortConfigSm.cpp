#include "Lldp/LldpInputSm/CliPortConfigSm.h"

#include "Lldp/LldpInputSm/NetworkPolicy.h"
#include "Lldp/LldpInputSm/PortConfigSync.h"
#include "Lldp/LldpInputSm/Root.h"
#include "Rex/Trace.h"

namespace Lldp::Agent::Input {
namespace {

const Rex::TraceHandle trace("LldpAgent", false);

}  // namespace

CliPortConfigSm::CliPortConfigSm(Lldp::CliPortConfig::PtrConst cliPortConfig,
                                 Bridging::Config::PtrConst bridgingConfig, Rex::Ptr<Root> root)
    : cliPortConfig_(std::move(cliPortConfig)),
      bridgingConfig_(std::move(bridgingConfig)),
      root_(std::move(root)) {
   on(cliPortConfig_, CliPortConfig::adminStatusAttr, &CliPortConfigSm::handleAdminStatus);
   on(cliPortConfig_, CliPortConfig::poeAllocatedPowerFallbackAttr,
      &CliPortConfigSm::handlePoeAllocatedPowerFallback);
   on(cliPortConfig_, CliPortConfig::networkPolicyConfigAttr,
      static_cast<void (CliPortConfigSm::*)(uint8_t)>(
          &CliPortConfigSm::handleNetworkPolicyCliConfig));

   handleInitialized();
}

CliPortConfigSm::~CliPortConfigSm() = default;

// A power fallback that stands already stays unwritten until it changes.
void CliPortConfigSm::handleInitialized() {
   TRACE(trace, 8, "CliPortConfigSm::handleInitialized() for " << intfId());
   handleAdminStatus();
   handleNetworkPolicyCliConfig();
}

// A port that is made later asks for the row's value itself.
void CliPortConfigSm::handleAdminStatus() {
   TRACE(trace, 8, "CliPortConfigSm::handleAdminStatus() for " << intfId());
   if (auto portConfig = root_->config()->portConfig(intfId())) {
      portAdminStatusIs(portConfig, cliPortConfig_->adminStatus(), bridgingConfig_, root_);
   }
}

void CliPortConfigSm::handlePoeAllocatedPowerFallback() {
   TRACE(trace, 8, "CliPortConfigSm::handlePoeAllocatedPowerFallback() for " << intfId());
   if (auto portConfig = root_->config()->portConfig(intfId())) {
      portConfig->poeAllocatedPowerFallbackIs(cliPortConfig_->poeAllocatedPowerFallback());
   }
}

void CliPortConfigSm::handleNetworkPolicyCliConfig() {
   TRACE(trace, 8, "CliPortConfigSm::handleNetworkPolicyCliConfig for " << intfId());
   doSyncNetworkPolicy();
}

// One changed row writes them all.
void CliPortConfigSm::handleNetworkPolicyCliConfig(uint8_t appValue) {
   TRACE(trace, 8,
         "CliPortConfigSm::handleNetworkPolicyCliConfig( " << static_cast<int>(appValue) << " for "
                                                           << intfId());
   doSyncNetworkPolicy();
}

void CliPortConfigSm::doSyncNetworkPolicy() {
   if (auto portConfig = root_->config()->portConfig(intfId())) {
      portNetworkPolicyConfigIs(portConfig, cliPortConfig_,
                                root_->localSystem()->localPort(intfId()));
   }
}

// Without the row the port's status is the default again; the power fallback and the network
// policies stay as they were last.
void CliPortConfigSm::doClose() {
   TRACE(trace, 8, "CliPortConfigSm::doClose() for " << intfId());
   if (auto portConfig = root_->config()->portConfig(intfId())) {
      portAdminStatusIs(portConfig, AdminStatus::txAndRx, bridgingConfig_, root_);
   }
}

}  // namespace Lldp::Agent::Input
