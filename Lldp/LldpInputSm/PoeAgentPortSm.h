// Copies the power agent's report on one port to the port. The report may come before the port: the
// port then has it from the next report on.
#pragma once

#include "Foreign/PoePortStatus.h"
#include "Rex/StateMachine.h"
#include "model/LocalSystem.h"

namespace Lldp::Agent::Input {

class PoeAgentPortSm : public Rex::StateMachine {
 public:
   PoeAgentPortSm(const Rex::String& name,
                  Environment::Power::PoePortStatus::PtrConst poePortStatus,
                  Lldp::LocalSystem::Ptr localSystem);
   ~PoeAgentPortSm() override;

   const Environment::Power::PoePortStatus::PtrConst& poePortStatus() const {
      return poePortStatus_;
   }

 private:
   void handlePoePortStatus();

   const Rex::String name_;  // the port's
   const Environment::Power::PoePortStatus::PtrConst poePortStatus_;
   const Lldp::LocalSystem::Ptr localSystem_;
};

// Writes the report into the named port's record, if there is one.
void updateLocalPortFromPowerAgent(Rex::Ptr<Lldp::LocalSystem> localSystem, const Rex::String& name,
                                   const Environment::Power::PoePortStatus::PortStatus& portStatus);

}  // namespace Lldp::Agent::Input
