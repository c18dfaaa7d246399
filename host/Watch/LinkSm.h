// Tells when a port comes up and goes down. A port that is not there is down.
#pragma once

#include "Interface/EthPhyIntfStatus.h"
#include "Rex/StateMachine.h"
#include "host/Watch/TellStanding.h"

namespace Host {

class LldpEvents;

class LinkSm : public Rex::StateMachine {
 public:
   LinkSm(Interface::EthPhyIntfStatus::PtrConst intfStatus, LldpEvents& events);

   const Interface::EthPhyIntfStatus::PtrConst& intfStatus() const { return intfStatus_; }
   void tellStanding(const TellStanding& tell) const;
   // The port has left.
   void handleGone() { upIs(false); }

 private:
   void handleLinkStatus();
   void upIs(bool up);

   const Interface::EthPhyIntfStatus::PtrConst intfStatus_;
   LldpEvents& events_;
   bool up_ = false;
};

}  // namespace Host
