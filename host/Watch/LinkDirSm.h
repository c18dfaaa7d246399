// Keeps a machine for each Ethernet port that there is.
#pragma once

#include "Interface/EthPhyIntfStatus.h"
#include "Rex/Owned.h"
#include "Rex/StateMachine.h"
#include "host/Watch/LinkSm.h"

namespace Host {

class LldpEvents;

class LinkDirSm : public Rex::StateMachine {
 public:
   LinkDirSm(Interface::AllEthPhyIntfStatusDir::PtrConst dir, LldpEvents& events);

   void tellStanding(const TellStanding& tell) const;

 private:
   void handleInitialized();
   void handleIntfStatus(const Wirekit::IntfId& intfId);
   void doClose() override { linkSm_.clear(); }

   const Interface::AllEthPhyIntfStatusDir::PtrConst dir_;
   LldpEvents& events_;
   Rex::OwnedMachines<LinkSm, Wirekit::IntfId> linkSm_;
};

}  // namespace Host
