// The operator's switch for LLDP as a whole: opens and closes the packet access of all ports. The
// port machines come and go with it.
#pragma once

#include "Interface/EthDevPamManager.h"
#include "Rex/StateMachine.h"
#include "model/CliConfig.h"

namespace Lldp::Agent::Protocol {

class OnOffSwitchSm : public Rex::StateMachine {
 public:
   OnOffSwitchSm(Lldp::CliConfig::PtrConst cliConfig, Interface::EthDevPamManager::Ptr pamMan);

   const Lldp::CliConfig::PtrConst& cliConfig() const { return cliConfig_; }
   const Interface::EthDevPamManager::Ptr& pamMan() const { return pamMan_; }

 private:
   void handleInitialized();
   void handleEnabled();
   void doClose() override;

   const Lldp::CliConfig::PtrConst cliConfig_;
   const Interface::EthDevPamManager::Ptr pamMan_;
};

}  // namespace Lldp::Agent::Protocol
