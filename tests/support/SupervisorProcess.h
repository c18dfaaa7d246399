// A process of one supervisor of a chassis, on the store that both reach: reads the store, takes
// the role that it finds there, starts the agent, and is to begin anew when it loses the role.
#pragma once

#include <memory>
#include <optional>
#include <string>

#include "Rex/Owned.h"
#include "Statestore/Replica.h"
#include "host/Redundancy.h"
#include "support/MergedStatusModel.h"
#include "support/SimulatedStore.h"
#include "support/World.h"

namespace LldpTest {

class SupervisorProcess {
 public:
   // `name`: that no other process has; it begins with the cell's number. `begin`: the role where
   // the store knows of none.
   SupervisorProcess(Supervisor& supervisor, SimulatedStore& store, const std::string& name,
                     Host::Role begin);
   // Is killed.
   ~SupervisorProcess();

   // What the process does of itself between two reactions.
   void turn();
   // Stops the agent in order. The process is over when it has sent what it has still to say.
   void stop();
   // Whether it is over, and the role in which it is to begin anew.
   bool over() const;
   std::optional<Host::Role> restartAs() const { return restartAs_; }

   SimulatedStore::Client& client() { return client_; }
   Statestore::Replica& replica() { return *replica_; }
   bool frozen() const { return ends_.has_value(); }
   // Of the merged table, while the agent is active.
   const Rex::Ptr<MergedStatusModel>& model() const { return model_; }

 private:
   void start();
   void follow();
   void end();

   Supervisor& supervisor_;
   SimulatedStore::Client& client_;
   const Host::Role begin_;
   std::unique_ptr<Statestore::Replica> replica_;
   Rex::Ptr<Statestore::EntityManager> manager_;
   Rex::OwnedMachine<Host::RedundancySm> redundancySm_;
   Rex::Ptr<MergedStatusModel> model_;
   bool loaded_ = false;
   std::optional<Host::Role> restartAs_;
   std::optional<double> ends_;  // when it does not wait any longer for the store
};

}  // namespace LldpTest
