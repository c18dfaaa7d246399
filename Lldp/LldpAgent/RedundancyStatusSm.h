// Turns the supervisor's redundancy status into the agent's standby mode.
#pragma once

#include "Foreign/Redundancy.h"
#include "Rex/StateMachine.h"

namespace Lldp::Agent {

class Agent;

class RedundancyStatusSm : public Rex::StateMachine {
 public:
   // Runs its handler at once: the agent has its mode when this returns.
   RedundancyStatusSm(Redundancy::RedundancyStatus::PtrConst redundancyStatus, Agent* agent);

 private:
   void handleRedundancyStatus();

   const Redundancy::RedundancyStatus::PtrConst redundancyStatus_;
   Agent* const agent_;
};

}  // namespace Lldp::Agent
