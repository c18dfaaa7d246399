#include "Lldp/LldpInputSm/PortConfigSync.h"

#include "Lldp/LldpInputSm/Lag.h"
#include "Lldp/LldpInputSm/Root.h"

namespace Lldp::Agent::Input {
namespace {

bool takesTransmission(Bridging::SwitchportMode mode) {
   return mode == Bridging::switchportMonitorIn || mode == Bridging::switchportMonitorOut ||
          mode == Bridging::switchportMonitorInOut;
}

AdminStatus withoutTransmission(AdminStatus status) {
   switch (status) {
      case AdminStatus::txAndRx:
         return AdminStatus::rxOnly;
      case AdminStatus::txOnly:
         return AdminStatus::disabled;
      default:
         return status;
   }
}

}  // namespace

void syncPortConfig(const PortConfig::Ptr& portConfig, const Rex::Ptr<Root>& root) {
   if (const auto& inputSm = root->inputSm()) inputSm->doSyncPortConfig(portConfig);
}

void portAdminStatusIs(const PortConfig::Ptr& portConfig, AdminStatus requestedStatus,
                       const Bridging::Config::PtrConst& bridgingConfig,
                       const Rex::Ptr<Root>& root) {
   auto governing = bridgingConfig->switchIntfConfig(governingIntf(portConfig->intfId(), root));
   if (governing && takesTransmission(governing->switchportMode())) {
      portConfig->adminStatusIs(withoutTransmission(requestedStatus));
   } else {
      portConfig->adminStatusIs(requestedStatus);
   }
}

void getEnabledTlvValues(const CliConfig::PtrConst& cliConfig, EnabledTlvs& enabledTlvs,
                         bool& mgmtAddrTxEnable, bool& portVlanTxEnable,
                         Dot3EnabledTlvs& dot3EnabledTlvs, TiaEnabledTlvs& tiaEnabledTlvs) {
   enabledTlvs.portDescriptionIs(cliConfig->tlvPortDesc());
   enabledTlvs.systemNameIs(cliConfig->tlvSysName());
   enabledTlvs.systemDescriptionIs(cliConfig->tlvSysDesc());
   enabledTlvs.systemCapabilitiesIs(cliConfig->tlvSysCap());
   mgmtAddrTxEnable = cliConfig->tlvMgmtAddr();
   portVlanTxEnable = cliConfig->tlvPortVlan();
   dot3EnabledTlvs.linkAggregationIs(cliConfig->tlvLinkAggregation());
   dot3EnabledTlvs.maximumFrameSizeIs(cliConfig->tlvMaximumFrameSize());
   dot3EnabledTlvs.powerViaMdiIs(cliConfig->tlvPowerViaMdi());
   tiaEnabledTlvs.networkPolicyIs(cliConfig->tlvNetworkPolicy());
}

}  // namespace Lldp::Agent::Input
