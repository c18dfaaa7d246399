// What the tables of other agents ask of whoever writes their rows, beyond the form of the values:
// what the agent takes for granted of them.
#pragma once

#include <map>
#include <set>
#include <string>
#include <utility>

#include "Rex/EntityType.h"
#include "Statestore/EntityManager.h"

namespace Host {

class ApiRules {
 public:
   explicit ApiRules(Statestore::EntityManager& entityManager) : entityManager_(entityManager) {}

   // Checks a write to the row of that type at `steps`, together with those checked before. The
   // body is well-formed. Throws ApiError.
   void check(const Statestore::Steps& steps, const Rex::EntityType& type, const Rex::Json& body);
   // A row goes, with all that is below it, before what is checked from here on.
   void rowGoes(const Statestore::Steps& steps) { gone_.insert(steps); }

 private:
   void requireOwnTlvs(const Statestore::Steps& steps, const Rex::Json& body);
   void requireNumber(const std::string& intf, const std::string& attribute) const;

   bool isGone(const Statestore::Steps& steps) const;

   Statestore::EntityManager& entityManager_;
   std::set<Statestore::Steps> gone_;
   std::map<std::pair<std::string, std::string>, std::string> providers_;  // by port and TLV key
};

}  // namespace Host
