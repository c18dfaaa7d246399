// The operator's row of one port. Stands while the row does and LLDP as a whole is on.
#pragma once

#include "Foreign/Bridging.h"
#include "Rex/StateMachine.h"
#include "model/CliConfig.h"

namespace Lldp::Agent::Input {

class Root;

class CliPortConfigSm : public Rex::StateMachine {
 public:
   CliPortConfigSm(Lldp::CliPortConfig::PtrConst cliPortConfig,
                   Bridging::Config::PtrConst bridgingConfig, Rex::Ptr<Root> root);
   ~CliPortConfigSm() override;

   const Lldp::CliPortConfig::PtrConst& cliPortConfig() const { return cliPortConfig_; }
   const Wirekit::IntfId& intfId() const { return cliPortConfig_->intfId(); }

 private:
   void handleInitialized();
   void handleAdminStatus();
   void handlePoeAllocatedPowerFallback();
   void handleNetworkPolicyCliConfig();
   void handleNetworkPolicyCliConfig(uint8_t appValue);
   void doSyncNetworkPolicy();
   void doClose() override;

   const Lldp::CliPortConfig::PtrConst cliPortConfig_;
   const Bridging::Config::PtrConst bridgingConfig_;
   const Rex::Ptr<Root> root_;
};

}  // namespace Lldp::Agent::Input
