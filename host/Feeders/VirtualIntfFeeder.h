// Makes interfaces of the switch of devices that are no ports: loopbacks, link aggregation groups
// and VLAN interfaces.
#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <set>
#include <string>

#include "host/Feeders/Intfs.h"
#include "host/Feeders/Network.h"
#include "host/Feeders/ServedDevices.h"

namespace Host {

class VirtualIntfFeeder {
 public:
   // Starts with the network that stands, and follows it as long as both live.
   VirtualIntfFeeder(Network& network, const ServedDevices& devices, Intfs& intfs);

 private:
   // The name that a device asks for.
   struct Wish {
      std::string kind;                // the name without its number
      std::optional<uint32_t> number;  // that it would like
      bool exact = false;              // it takes no other
      std::string device;
      bool isSameIntf(const Wish& other) const {
         return kind == other.kind && number == other.number && exact == other.exact;
      }
   };
   struct Bearer {
      Wish wish;
      Wirekit::IntfId intfId;
   };

   std::optional<Wish> wishOf(const Link& link) const;
   void sync(int32_t ifIndex);
   // Gives it a name; what can have none waits until one goes.
   void add(const Link& link, const Wish& wish);
   // Takes its name from it, and returns that.
   Wirekit::IntfId remove(int32_t ifIndex);
   void waitFor(const Link& link, const Wirekit::IntfId& wanted);
   void doneWaiting(int32_t ifIndex);
   void addWaiting(const Wirekit::IntfId& intfId);
   // Empty: the only one that would do is another device's.
   Wirekit::IntfId freeName(const Wish& wish);

   const Network& network_;
   const ServedDevices& devices_;
   Intfs& intfs_;
   std::map<int32_t, Bearer> bearers_;                     // by index
   std::map<Wirekit::IntfId, int32_t> byName_;             // their indices
   std::map<std::string, uint32_t> firstFree_;             // by kind: no lower number is free
   std::map<Wirekit::IntfId, std::set<int32_t>> waiting_;  // for a name
   std::map<int32_t, Wirekit::IntfId> waitsFor_;
};

}  // namespace Host
