// The machines that answer endpoints (power, network policy, telephones), made beside an engine in
// the agent's order and fed by hand where other agents would.
#pragma once

#include "Lldp/LldpInputSm/NetworkPolicySm.h"
#include "Lldp/LldpInputSm/PoeSm.h"
#include "Lldp/LldpNbrClassificationSm/NbrClassificationSm.h"
#include "Rex/Owned.h"
#include "support/Engine.h"

namespace LldpTest {

class Endpoints {
 public:
   explicit Endpoints(Engine& engine) : engine_(engine) {}
   ~Endpoints() {
      nbrClassificationSmDel();
      networkPolicySmDel();
      poeSmDel();
   }
   void start() {
      poeSmIs(engine_.status, engine_.localSystem, poePortStatus);
      networkPolicySmIs(engine_.config, engine_.status, engine_.localSystem);
      nbrClassificationSmIs(engine_.ethPhyIntfStatusDir, engine_.status, cliConfig, dot1x, status);
   }

   const Rex::Dir::Ptr poePortStatus = Rex::make<Rex::Dir>();
   const Identity::NbrClassification::CliConfig::Ptr cliConfig =
       Rex::make<Identity::NbrClassification::CliConfig>();
   const Identity::NbrClassification::Status::Ptr status =
       Rex::make<Identity::NbrClassification::Status>();
   const Identity::Dot1x::Status::Ptr dot1x = Rex::make<Identity::Dot1x::Status>();

 private:
   Engine& engine_;

   REX_MACHINE(Lldp::Agent::Input::PoeSm, poeSm)
   REX_MACHINE(Lldp::Agent::Input::NetworkPolicySm, networkPolicySm)
   REX_MACHINE(Lldp::Agent::NbrClassification::NbrClassificationSm, nbrClassificationSm)
};

}  // namespace LldpTest
