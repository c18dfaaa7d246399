// Brings together what neighbours ask of power and what the power agent allows: for each port the
// one neighbour that is answered, and the port's state.
//
// After every change of a neighbour anywhere, each port answers whom a walk over all ports and
// neighbours would choose at that moment. Only the ports are looked at whose answer may be another
// one: PoePortStatusSm notes them, and handleRemoteSystem() takes them up.
#pragma once

#include "Lldp/LldpInputSm/NotedPorts.h"
#include "Lldp/LldpInputSm/PoeAgentPortSm.h"
#include "Lldp/LldpInputSm/PoePortStatusSm.h"
#include "Rex/Dir.h"
#include "Rex/Owned.h"
#include "Rex/StateMachine.h"
#include "model/LocalSystem.h"
#include "model/Status.h"

namespace Lldp::Agent::Input {

class PoeSm : public Rex::StateMachine {
 public:
   PoeSm(Lldp::Status::PtrConst status, Lldp::LocalSystem::Ptr localSystem,
         Rex::Dir::PtrConst poePortStatus);
   ~PoeSm() override;

   // The port's answer may be another one from here on.
   void doNote(const Wirekit::IntfId& intfId);

 private:
   void handleInitialized();
   void handleRemoteSystem();
   void handlePortStatus(const Wirekit::IntfId& intfId);
   void handlePowerAgentUpdate(const Rex::String& name);
   void handlePowerAgentDelete(const Rex::String& name);
   void doAnswer(const Wirekit::IntfId& intfId);
   void doClose() override;

   const Lldp::Status::PtrConst status_;
   const Lldp::LocalSystem::Ptr localSystem_;
   const Rex::Dir::PtrConst poePortStatus_;
   NotedPorts noted_;

   REX_MACHINES(PoeAgentPortSm, poeAgentPortSm, Rex::String)
   REX_MACHINES(PoePortStatusSm, poePortStatusSm, Wirekit::IntfId)
};

}  // namespace Lldp::Agent::Input
