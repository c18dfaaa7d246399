// The operator's configuration as one: what of it differs from the defaults, as JSON by path of the
// store, and the way back. Generic over the description of the types.
//
//   {"l2discovery/lldp/cliConfig": {"messageTxInterval": 10,
//                                   "cliPortConfig": {"Ethernet1": {"adminStatus": "rxOnly"}}}}
//
// A row that stands is named also when all its attributes are at their defaults, as {}: a new
// switch has no row.
#pragma once

#include <functional>

#include "Rex/EntityType.h"
#include "Statestore/EntityManager.h"

namespace Host {

class OperatorConfig {
 public:
   // Makes the entities where nobody has asked for them yet.
   explicit OperatorConfig(Rex::Ptr<Statestore::EntityManager> entityManager);

   Rex::Json differences() const;

   // Reads and checks that form, and returns what writes it; what it does not name stays. Throws
   // Rex::JsonError, and then nothing has changed.
   std::function<void()> decode(const Rex::Json& json) const;

 private:
   const Rex::Ptr<Statestore::EntityManager> entityManager_;
};

}  // namespace Host
