#include "support/SupervisorProcess.h"

#include "host/Feeders/FedEntity.h"
#include "host/KnownPaths.h"

namespace LldpTest {
namespace {

constexpr double longestFlush = 2;  // seconds

}  // namespace

SupervisorProcess::SupervisorProcess(Supervisor& supervisor, SimulatedStore& store,
                                     const std::string& name, Host::Role begin)
    : supervisor_(supervisor), client_(store.client()), begin_(begin) {
   supervisor_.processIs();
   Rex::ContextScope scope(supervisor_.context());
   client_.name = name;
   replica_ = std::make_unique<Statestore::Replica>(client_, name);
   // Which interfaces there are is no affair of the other supervisor's.
   auto& tree = supervisor_.context().service<Statestore::Tree>();
   tree.replicaIs(nullptr);
   supervisor_.intfsIs();
   tree.replicaIs(replica_.get());
   manager_ = Rex::make<Statestore::EntityManager>();
   std::vector<std::string> paths;
   for (const Host::KnownPath& known : Host::knownPaths()) {
      manager_->entityIs(known.path, known.type);
      paths.push_back(known.path);
   }
   replica_->loaded(paths, [this](bool ofTheirTypes) {
      EXPECT_TRUE(ofTheirTypes);
      loaded_ = true;
   });
   client_.connect();
}

SupervisorProcess::~SupervisorProcess() {
   Rex::ContextScope scope(supervisor_.context());
   client_.leave();
   replica_->detach();
   if (model_) model_->close();
   redundancySm_.reset();
   supervisor_.kill();
}

void SupervisorProcess::turn() {
   Rex::ContextScope scope(supervisor_.context());
   if (loaded_ && !redundancySm_.get()) start();
   auto* agent = supervisor_.agent();
   if (agent && agent->statusAccumulatorSm()) follow();
}

void SupervisorProcess::follow() {
   if (!model_) model_ = Rex::make<MergedStatusModel>(supervisor_);
}

// As the daemon does it.
void SupervisorProcess::start() {
   auto status = Host::redundancyIn(*manager_, begin_);
   auto guard = [this, status] { replica_->guardIs(Host::writeGuard(*status)); };
   auto restart = [this](Host::Role role) {
      replica_->freeze();
      restartAs_ = role;
      end();
   };
   // What follows in the same turn is not to be missed.
   auto becomesActive = [this, guard] {
      guard();
      if (supervisor_.agent() && supervisor_.agent()->inputRoot()) follow();
   };
   redundancySm_.make(status, Host::fedEntity<Rex::Dir>(*manager_, "l2discovery/lldp/status/local"),
                      Host::RedundancySm::Reactions{becomesActive, guard, restart});
   supervisor_.netStatus()->hostnameIs("switch");
   if (redundancySm_.get()->isActive()) guard();
   supervisor_.start();
}

void SupervisorProcess::end() {
   ends_ = supervisor_.world().now() + longestFlush;
}

void SupervisorProcess::stop() {
   if (model_) model_->close();
   model_ = nullptr;
   redundancySm_.reset();
   loaded_ = false;
   supervisor_.stop();
   end();
}

bool SupervisorProcess::over() const {
   return ends_ && (replica_->idle() || supervisor_.world().now() >= *ends_);
}

}  // namespace LldpTest
