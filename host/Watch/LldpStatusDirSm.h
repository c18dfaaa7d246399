// Waits for this cell's LLDP status, which comes with the agent, and watches it while it stands.
#pragma once

#include "Rex/Dir.h"
#include "Rex/Owned.h"
#include "Rex/StateMachine.h"
#include "host/Watch/LldpStatusSm.h"

namespace Host {

class LldpEvents;

class LldpStatusDirSm : public Rex::StateMachine {
 public:
   LldpStatusDirSm(Rex::Dir::PtrConst dir, LldpEvents& events);

   void tellStanding(const TellStanding& tell) const;

 private:
   void handleEntry(const Rex::String& name);
   void doClose() override { lldpStatusSm_.reset(); }

   const Rex::Dir::PtrConst dir_;
   const Rex::String cell_;  // the entry's name
   LldpEvents& events_;
   Rex::OwnedMachine<LldpStatusSm> lldpStatusSm_;
};

}  // namespace Host
