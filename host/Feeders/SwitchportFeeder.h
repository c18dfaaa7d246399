// Fills the switchports: the VLAN of ports and groups that are members of a bridge. One outside
// any bridge has no row.
#pragma once

#include <cstdint>

#include "Foreign/Bridging.h"
#include "Statestore/EntityManager.h"
#include "host/Feeders/Intfs.h"
#include "host/Feeders/Network.h"

namespace Host {

class SwitchportFeeder {
 public:
   // Starts with what stands, and follows both as long as they live. Writes into the same entity as
   // the bridging feeder.
   SwitchportFeeder(Statestore::EntityManager& entityManager, Network& network, Intfs& intfs);

 private:
   void sweep();
   void handleLink(const Link* before, const Link* after);
   void sync(int32_t ifIndex);
   // None: zero.
   PortVlan vlanOf(int32_t ifIndex) const;
   void withdraw(const Wirekit::IntfId& intfId);

   const Network& network_;
   const Intfs& intfs_;
   Bridging::Config::Ptr config_;
};

}  // namespace Host
