// Gives a port that comes, and every port when LLDP is turned on, the power fallback of its row:
// the agent takes up a change of the setting alone, and that only while LLDP is on.
#pragma once

#include "Rex/StateMachine.h"
#include "model/CliConfig.h"
#include "model/Config.h"

namespace Host {

class PowerFallback : public Rex::StateMachine {
 public:
   PowerFallback(Lldp::Config::Ptr config, Lldp::CliConfig::PtrConst cliConfig);
   ~PowerFallback() override;

 private:
   void handleEnabled();
   void handlePortConfig(const Wirekit::IntfId& intfId);

   const Lldp::Config::Ptr config_;
   const Lldp::CliConfig::PtrConst cliConfig_;
};

}  // namespace Host
