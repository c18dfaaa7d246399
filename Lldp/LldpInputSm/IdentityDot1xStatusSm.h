// Watches whether 802.1X lets LLDP through on ports that it has not authorised.
#pragma once

#include "Foreign/Dot1x.h"
#include "Rex/StateMachine.h"

namespace Lldp::Agent::Input {

class Root;

class IdentityDot1xStatusSm : public Rex::StateMachine {
 public:
   IdentityDot1xStatusSm(Identity::Dot1x::Status::PtrConst identityDot1xStatus,
                         Rex::Ptr<Root> root);
   ~IdentityDot1xStatusSm() override;

   const Identity::Dot1x::Status::PtrConst& identityDot1xStatus() const {
      return identityDot1xStatus_;
   }

 private:
   void handleLldpBypass();

   const Identity::Dot1x::Status::PtrConst identityDot1xStatus_;
   const Rex::Ptr<Root> root_;
};

}  // namespace Lldp::Agent::Input
