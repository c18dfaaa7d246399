// Fills the IP addresses of the switch's interfaces, with the VRF of each.
//
// Addresses that change together are told in one reaction, and one that stays is never taken back
// in between. An interface that goes gives up its addresses first, then its rows, each in a
// reaction of its own.
#pragma once

#include <cstdint>
#include <set>
#include <string>

#include "Foreign/Ip.h"
#include "Foreign/Ip6.h"
#include "Statestore/EntityManager.h"
#include "host/Feeders/Intfs.h"
#include "host/Feeders/Network.h"

namespace Host {

class AddressFeeder {
 public:
   // Starts with what stands, and follows both as long as they live.
   AddressFeeder(Statestore::EntityManager& entityManager, Network& network, Intfs& intfs);

   static std::set<std::string> fedPaths();

 private:
   using IntfId = Wirekit::IntfId;

   void sweep();
   void handleAddresses(const std::set<int32_t>& ifIndices);
   void handleLink(const Link* before, const Link* after);
   void handleIntfGoes(const IntfId& intfId);
   void write(int32_t ifIndex);
   void writeIp6(const IntfId& intfId, const std::set<Wirekit::Ip6AddrWithMask>& addrs);
   void forgetPromoted(int32_t ifIndex);
   void syncVrf(int32_t ifIndex);
   // Whether the agent can rank the interface; it must not come to see one that it cannot.
   bool ranked(int32_t ifIndex, const IntfId& intfId);
   L3::VrfName vrfOf(int32_t ifIndex) const;

   const Network& network_;
   const Intfs& intfs_;
   Ip::Status::Ptr ip_;
   Ip6::Status::Ptr ip6_;
   std::set<IntfId> warned_;  // interfaces without a rank that have been logged
};

}  // namespace Host
