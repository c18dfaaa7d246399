// The machines that answer endpoints (power, network policy, telephones) and the one that merges
// the table, made beside an engine in the agent's order and fed by hand where other agents would.
#pragma once

#include "Lldp/LldpAgent/StatusAccumulatorSm.h"
#include "Lldp/LldpInputSm/NetworkPolicySm.h"
#include "Lldp/LldpInputSm/PoeSm.h"
#include "Lldp/LldpNbrClassificationSm/NbrClassificationSm.h"
#include "Rex/Owned.h"
#include "support/Engine.h"

namespace LldpTest {

// Another agent that reads the merged table.
class AllStatusReader : public Rex::StateMachine {
 public:
   explicit AllStatusReader(const Lldp::AllStatus::Ptr& allStatus) {
      on(allStatus, Lldp::StatusBase::remTablesLastChangeTimeAttr, &AllStatusReader::handleChange);
   }

 private:
   void handleChange() {}
};

class Endpoints {
 public:
   explicit Endpoints(Engine& engine) : engine_(engine) {}
   ~Endpoints() {
      statusAccumulatorSmDel();
      nbrClassificationSmDel();
      networkPolicySmDel();
      poeSmDel();
   }
   void start() {
      poeSmIs(engine_.status, engine_.localSystem, poePortStatus);
      networkPolicySmIs(engine_.config, engine_.status, engine_.localSystem);
      nbrClassificationSmIs(engine_.ethPhyIntfStatusDir, engine_.status, cliConfig, dot1x, status);
      statusAccumulatorSmIs(engine_.status, nullptr, Rex::make<Rex::Dir>(), allStatus_);
   }

   const Rex::Dir::Ptr poePortStatus = Rex::make<Rex::Dir>();
   const Identity::NbrClassification::CliConfig::Ptr cliConfig =
       Rex::make<Identity::NbrClassification::CliConfig>();
   const Identity::NbrClassification::Status::Ptr status =
       Rex::make<Identity::NbrClassification::Status>();
   const Identity::Dot1x::Status::Ptr dot1x = Rex::make<Identity::Dot1x::Status>();

 private:
   Engine& engine_;
   const Lldp::AllStatus::Ptr allStatus_ = Rex::make<Lldp::AllStatus>();
   const Rex::Ptr<AllStatusReader> reader_ = Rex::make<AllStatusReader>(allStatus_);

   REX_MACHINE(Lldp::Agent::Input::PoeSm, poeSm)
   REX_MACHINE(Lldp::Agent::Input::NetworkPolicySm, networkPolicySm)
   REX_MACHINE(Lldp::Agent::NbrClassification::NbrClassificationSm, nbrClassificationSm)
   REX_MACHINE(Lldp::Agent::StatusAccumulatorSm, statusAccumulatorSm)
};

}  // namespace LldpTest
