// The tables of interfaces that the feeders fill for the agent.
#pragma once

#include <set>
#include <string>

#include "Interface/EthLagIntfStatus.h"
#include "Interface/EthPhyIntfConfig.h"
#include "Interface/EthPhyIntfStatus.h"
#include "Interface/IntfStatus.h"
#include "host/Feeders/IntfTable.h"

namespace Host {

class IntfTables {
 public:
   using Of = IntfTableOf;
   explicit IntfTables(Statestore::EntityManager& manager, Of whose = Of::own);

   // The paths that nobody else writes. The description in an interface's configuration is not
   // among them: it is the operator's too, and the later word counts.
   static std::set<std::string> fedPaths(bool chassis);

   auto& status() { return *status_.get(); }
   auto& phy() { return *phy_.get(); }
   auto& config() { return *config_.get(); }
   auto& groups() { return *groups_.get(); }
   // Interfaces of this supervisor alone.
   Interface::AllIntfStatusLocalDir& local() { return *local_; }

   // Once all feeders have started: removes what an earlier process of this supervisor left.
   void sweep();

 private:
   template <class Dir, class Row>
   using Table = Rex::OwnedMachine<IntfTable<Dir, Row>>;

   Table<Interface::AllIntfStatusDir, Interface::IntfStatus> status_;
   Table<Interface::AllEthPhyIntfConfigDir, Interface::EthPhyIntfConfig> config_;
   Table<Interface::AllEthPhyIntfStatusDir, Interface::EthPhyIntfStatus> phy_;
   Table<Interface::EthLagIntfStatusDir, Interface::EthLagIntfStatus> groups_;
   Interface::AllIntfStatusLocalDir::Ptr local_;
};

}  // namespace Host
