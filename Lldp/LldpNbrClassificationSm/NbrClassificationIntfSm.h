// The link of an interface with a classified neighbour. With classifications that outlive the link,
// the normal state, nothing follows from it.
#pragma once

#include "Interface/EthPhyIntfStatus.h"
#include "Rex/StateMachine.h"

namespace Lldp::Agent::NbrClassification {

class NbrClassificationSm;

class NbrClassificationIntfSm : public Rex::StateMachine {
 public:
   NbrClassificationIntfSm(Interface::EthPhyIntfStatus::PtrConst ethIntfStatus,
                           const Wirekit::IntfId& intfId, NbrClassificationSm* nbrClassificationSm);
   ~NbrClassificationIntfSm() override;

 private:
   void handleLinkStatus();

   const Interface::EthPhyIntfStatus::PtrConst ethIntfStatus_;
   const Wirekit::IntfId intfId_;
   NbrClassificationSm* const nbrClassificationSm_;
};

}  // namespace Lldp::Agent::NbrClassification
