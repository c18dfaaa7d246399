// Waits, on a supervisor that starts as standby, until the active supervisor has made this cell's
// status, and then lets the agent go on.
#pragma once

#include "Rex/Dir.h"
#include "Rex/StateMachine.h"

namespace Lldp::Agent {

class Agent;

class StandbyLldpStatusDirSm : public Rex::StateMachine {
 public:
   StandbyLldpStatusDirSm(Rex::Dir::PtrConst lldpStatusDir, Agent* agent);

   bool lldpStatusLocalDirReady() const { return lldpStatusLocalDirReady_; }

 private:
   void handleInitialized();
   void handleLldpStatusDir(const Rex::String& name);
   void handleLldpStatusDir();
   void lldpStatusLocalDirReadyIs(bool ready) { lldpStatusLocalDirReady_ = ready; }

   const Rex::Dir::PtrConst lldpStatusDir_;
   bool lldpStatusLocalDirReady_ = false;
   Agent* const agent_;
};

}  // namespace Lldp::Agent
