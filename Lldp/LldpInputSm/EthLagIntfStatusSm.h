// The members of one link aggregation group: which ports count it among their groups. Exists while
// the group's status does.
#pragma once

#include "Interface/EthLagIntfStatus.h"
#include "Rex/OrderedMap.h"
#include "Rex/StateMachine.h"

namespace Lldp::Agent::Input {

class Root;

class EthLagIntfStatusSm : public Rex::StateMachine {
 public:
   EthLagIntfStatusSm(Interface::EthLagIntfStatus::PtrConst ethLagIntfStatus, Rex::Ptr<Root> root);
   ~EthLagIntfStatusSm() override;

   const Interface::EthLagIntfStatus::PtrConst& ethLagIntfStatus() const {
      return ethLagIntfStatus_;
   }
   // The group's.
   const Wirekit::IntfId& intfId() const { return ethLagIntfStatus_->intfId(); }

 private:
   void handleInitialized();
   void handleMember(const Wirekit::IntfId& memberId);
   void doAdd(const Wirekit::IntfId& memberId);
   void doRemove(const Wirekit::IntfId& memberId);
   void doClose() override;

   const Interface::EthLagIntfStatus::PtrConst ethLagIntfStatus_;
   const Rex::Ptr<Root> root_;
   Rex::OrderedMap<Wirekit::IntfId, bool> counted_;  // the members that this machine has recorded
};

}  // namespace Lldp::Agent::Input
