// Fills the IP addresses of the switch's interfaces, with the VRF of each.
//
// Addresses that change together are told in one reaction, and one that stays is never taken back
// in between. An interface that goes gives up its addresses first, then its rows, each in a
// reaction of its own.
#pragma once

#include <cstdint>
#include <optional>
#include <set>
#include <string>

#include "Foreign/Ip.h"
#include "Foreign/Ip6.h"
#include "Statestore/EntityManager.h"
#include "host/Feeders/Intfs.h"
#include "host/Feeders/Network.h"

namespace Host {

// Takes an interface's rows away, whoever wrote them: its addresses first.
void withdrawAddresses(Ip::Status& ip, Ip6::Status& ip6, const Wirekit::IntfId& intfId);

class AddressFeeder {
 public:
   static constexpr const char* ipPath = "ip/status";
   static constexpr const char* ip6Path = "ip6/status";

   // Starts with what stands, and follows both as long as they live.
   AddressFeeder(Statestore::EntityManager& entityManager, Network& network, Intfs& intfs);

   static std::set<std::string> fedPaths();

 private:
   using IntfId = Wirekit::IntfId;

   void sweep();
   void handleAddresses(const std::set<int32_t>& ifIndices);
   void handleLink(const Link* before, const Link* after);
   void handleIntfGoes(const IntfId& intfId);
   // What the IPv4 row of an interface is to say.
   struct Ip4Wish {
      int32_t ifIndex;
      IntfId intfId;
      Ip4Selection addresses;
   };
   std::optional<Ip4Wish> ip4Wish(int32_t ifIndex);
   void makeRow(const Ip4Wish& wish);
   void writeIp6(int32_t ifIndex);
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
