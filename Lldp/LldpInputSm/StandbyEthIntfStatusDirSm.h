// Gives a standby supervisor's own management ports their status and packet access. Their
// configuration and local information come from the active supervisor, at its own pace.
#pragma once

#include "Interface/EthPhyIntfStatus.h"
#include "Rex/StateMachine.h"
#include "model/Config.h"
#include "model/LocalSystem.h"

namespace Lldp::Agent::Input {

class Root;

class StandbyEthIntfStatusDirSm : public Rex::StateMachine {
 public:
   StandbyEthIntfStatusDirSm(Interface::AllEthPhyIntfStatusDir::PtrConst ethPhyIntfStatusDir,
                             Lldp::Config::PtrConst config, Lldp::LocalSystem::PtrConst localSystem,
                             Rex::Ptr<Root> root);
   ~StandbyEthIntfStatusDirSm() override;

 private:
   void handleInitialized();
   void handlePhyIntfStatus(const Wirekit::IntfId& intfId);
   void doMaybeCreateDesiredIntf(const Wirekit::IntfId& intfId);

   const Interface::AllEthPhyIntfStatusDir::PtrConst ethPhyIntfStatusDir_;
   const Lldp::Config::PtrConst config_;
   const Lldp::LocalSystem::PtrConst localSystem_;
   const Rex::Ptr<Root> root_;
};

}  // namespace Lldp::Agent::Input
