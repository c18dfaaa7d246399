// The interfaces of the switch, of every kind: which device each of them is. Fills their
// directories.
//
// An interface's row comes before whatever else is told of it, and goes last, each change in a
// reaction of its own: the agent takes an address of an interface without a number for a fault.
#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <string>
#include <vector>

#include "Wirekit/IntfId.h"
#include "host/Feeders/IntfTables.h"
#include "host/Feeders/Links.h"

namespace Host {

class Intfs {
 public:
   explicit Intfs(IntfTables& tables) : tables_(tables) {}

   // Told by index and name: that the interface stands, and that it is about to go.
   using Listener = std::function<void(int32_t ifIndex, const Wirekit::IntfId& intfId)>;
   void listenerIs(Listener came, Listener goes) {
      came_.push_back(std::move(came));
      goes_.push_back(std::move(goes));
   }

   // The name must have no row. A row that the device has under another name goes first: it may
   // have become what another feeder serves before the first one heard of it.
   void intfIs(const Link& link, const Wirekit::IntfId& intfId);
   void deviceNameIs(int32_t ifIndex, const std::string& name);
   // Does nothing if the device is another interface by now.
   void intfDel(int32_t ifIndex, const Wirekit::IntfId& intfId);

   const std::map<int32_t, Wirekit::IntfId>& all() const { return all_; }
   // Null for a device that is no interface of the switch.
   const Wirekit::IntfId* at(int32_t ifIndex) const;

 private:
   std::map<int32_t, Wirekit::IntfId> all_;
   std::vector<Listener> came_;
   std::vector<Listener> goes_;
   IntfTables& tables_;
};

}  // namespace Host
