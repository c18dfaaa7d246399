// Who may change what through the management API, and what the API adds to an operator's words.
#pragma once

#include <set>
#include <string>
#include <string_view>

#include "Rex/EntityType.h"
#include "Statestore/EntityManager.h"

namespace Host {

class ApiAccess {
 public:
   // `fed`: the paths that the host's own feeders write.
   ApiAccess(Rex::Ptr<Statestore::EntityManager> entityManager, std::set<std::string> fed)
       : entityManager_(std::move(entityManager)), fed_(std::move(fed)) {}
   // Of a process that is no agent: what agents and feeders of others may write.
   static ApiAccess besideAgents(Rex::Ptr<Statestore::EntityManager> entityManager);

   // Why the entity at a path of the store, and what is below it, is not the operator's to change;
   // empty when it is. Nobody but its writer changes what the agent or a feeder writes.
   std::string refusal(const std::string& root) const;

   // The type that entries of the directory at `root` have; empty where that is not known.
   static std::string_view entryType(std::string_view root);

   // Whether a write to a row makes a new one in its place. Those who read rows of the type watch
   // the keys of their collection and not what stands inside.
   static bool isReplacedAsWhole(const Rex::EntityType& type);

   // Stamps an operator's request with its time, where that was left out. Throws Rex::JsonError for
   // a time that is still to come: no request after it would count until then.
   static void stamp(const Rex::EntityType& type, Rex::Json& attributes);

 private:
   const Rex::Ptr<Statestore::EntityManager> entityManager_;
   std::set<std::string> fed_;
   std::set<std::string> agents_;  // what an agent elsewhere writes
};

}  // namespace Host
