// The maximum frame size of a management port, which follows the port's own MTU.
#pragma once

#include "Interface/EthPhyIntfStatus.h"
#include "Rex/StateMachine.h"

namespace Lldp::Agent::Input {

class Root;

class MgmtEthPhyIntfStatusSm : public Rex::StateMachine {
 public:
   MgmtEthPhyIntfStatusSm(Interface::EthPhyIntfStatus::PtrConst ethPhyIntfStatus,
                          Rex::Ptr<Root> root);
   ~MgmtEthPhyIntfStatusSm() override;

   const Interface::EthPhyIntfStatus::PtrConst& ethPhyIntfStatus() const {
      return ethPhyIntfStatus_;
   }
   const Wirekit::IntfId& intfId() const { return ethPhyIntfStatus_->intfId(); }

 private:
   void handleInitialized();
   void handleMaxMtu();

   const Interface::EthPhyIntfStatus::PtrConst ethPhyIntfStatus_;
   const Rex::Ptr<Root> root_;
};

}  // namespace Lldp::Agent::Input
