// Base of an agent: one process-level object that mounts what it needs and then runs its machines.
#pragma once

#include <string_view>

#include "Foreign/Redundancy.h"
#include "Rex/Ptr.h"
#include "Rex/String.h"
#include "Statestore/EntityManager.h"

namespace AgentBase {

class CAgent : public Rex::PtrInterface, public Statestore::Mounter {
 public:
   using Ptr = Rex::Ptr<CAgent>;

   // Makes the agent's entity manager in the present context, and finds this supervisor's
   // redundancy status at Cell::path("redundancy/status", 0).
   explicit CAgent(const Rex::String& name);
   ~CAgent() override;

   const Rex::String& name() const { return name_; }
   const Rex::Ptr<Statestore::EntityManager>& entityManager() const { return entityManager_; }
   const Rex::Ptr<Redundancy::RedundancyStatus>& redundancyStatus() const {
      return redundancyStatus_;
   }

   void doMountsComplete(Statestore::MountStatus status,
                         const Rex::Ptr<Statestore::EntityManager>& entityManager) override;
   // Starts the agent. Called once, by its host, when it stands.
   virtual void doInit() {}

   bool localEntitiesCreated() const { return localEntitiesCreated_; }

 protected:
   // Makes an entity of this agent alone, found at `path` as if it were mounted there.
   Rex::Ptr<Rex::Entity> createLocalEntity(const Rex::String& name, std::string_view typeName,
                                           std::string_view path);
   // Declares that all local entities are made.
   void localEntitiesCreatedIs(bool created) { localEntitiesCreated_ = created; }

 private:
   const Rex::String name_;
   const Rex::Ptr<Statestore::EntityManager> entityManager_;
   Rex::Ptr<Redundancy::RedundancyStatus> redundancyStatus_;
   bool localEntitiesCreated_ = false;
};

}  // namespace AgentBase
