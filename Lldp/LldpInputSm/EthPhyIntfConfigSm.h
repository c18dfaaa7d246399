// The operator's configuration of one physical interface, which gives the port its description.
#pragma once

#include "Interface/EthPhyIntfConfig.h"
#include "Rex/StateMachine.h"
#include "model/LocalSystem.h"

namespace Lldp::Agent::Input {

class Root;

class EthPhyIntfConfigSm : public Rex::StateMachine {
 public:
   EthPhyIntfConfigSm(Interface::EthPhyIntfConfig::PtrConst ethPhyIntfConfig, Rex::Ptr<Root> root);
   ~EthPhyIntfConfigSm() override;

   const Interface::EthPhyIntfConfig::PtrConst& ethPhyIntfConfig() const {
      return ethPhyIntfConfig_;
   }
   const Wirekit::IntfId& intfId() const { return ethPhyIntfConfig_->intfId(); }

   // Fills in what the port takes from here. `localPort` is this interface's.
   void doSyncLocalPort(const LocalPort::Ptr& localPort);

 private:
   void handleInitialized();
   void handleDescription();

   const Interface::EthPhyIntfConfig::PtrConst ethPhyIntfConfig_;
   const Rex::Ptr<Root> root_;
};

}  // namespace Lldp::Agent::Input
