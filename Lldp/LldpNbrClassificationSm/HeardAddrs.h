// Which neighbours are heard from each MAC address.
//
// A walk over all ports and neighbours, in the order of the tables, would overwrite what it finds
// of an address as it goes: the neighbour that it meets last has the last word. Here the neighbours
// of an address are found without the walk, in its order.
#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <vector>

#include "Rex/HashMap.h"
#include "Wirekit/EthAddr.h"
#include "Wirekit/IntfId.h"
#include "model/RemoteSystem.h"

namespace Lldp::Agent::NbrClassification {

// Where in the walk a neighbour stands: its port's place, then its own on the port.
struct Place {
   uint64_t port = 0;
   uint64_t remoteSystem = 0;
   auto operator<=>(const Place&) const = default;
};

struct Heard {
   RemoteSystem::PtrConst remoteSystem;
   Wirekit::IntfId intfId;
   Place place;
};

class HeardAddrs {
 public:
   void add(const Wirekit::EthAddr& ethAddr, const Heard& heard);
   void remove(const Wirekit::EthAddr& ethAddr, const Place& place);
   // The neighbour with the last word on an address, among those that still `stand`.
   template <class Stands>
   const Heard* last(const Wirekit::EthAddr& ethAddr, Stands stands) const {
      const Entry* entry = entries_.find(ethAddr);
      if (!entry) return nullptr;
      if (stands(entry->last)) return &entry->last;
      if (!entry->others) return nullptr;
      for (auto at = entry->others->rbegin(); at != entry->others->rend(); ++at) {
         if (stands(at->second)) return &at->second;
      }
      return nullptr;
   }
   // All of them.
   std::vector<Heard> all(const Wirekit::EthAddr& ethAddr) const;

 private:
   // Nearly every address is one neighbour's alone.
   struct Entry {
      Heard last;
      std::shared_ptr<std::map<Place, Heard>> others;
   };
   Rex::HashMap<Wirekit::EthAddr, Entry> entries_;
};

}  // namespace Lldp::Agent::NbrClassification
