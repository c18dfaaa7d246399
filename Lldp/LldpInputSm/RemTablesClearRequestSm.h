// Carries out the operator's requests to clear the neighbour table, on active and standby alike.
#pragma once

#include "Rex/StateMachine.h"
#include "model/CliConfig.h"

namespace Lldp::Agent::Input {

class Root;

class RemTablesClearRequestSm : public Rex::StateMachine {
 public:
   RemTablesClearRequestSm(Lldp::RemTablesCliConfig::PtrConst remTablesCliConfig,
                           Rex::Ptr<Root> root);
   ~RemTablesClearRequestSm() override;

 private:
   void handleInitialized();
   void handleRemTablesClearRequest();

   const Lldp::RemTablesCliConfig::PtrConst remTablesCliConfig_;
   const Rex::Ptr<Root> root_;
};

}  // namespace Lldp::Agent::Input
