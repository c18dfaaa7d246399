// The devices of the machine as the feeders see them.
#pragma once

#include <functional>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "Interface/IntfForwardingModel.h"
#include "Interface/LinkStatus.h"
#include "Wirekit/EthAddr.h"

namespace Host {

struct Link {
   int32_t ifIndex = 0;
   std::string name;
   std::string kind;  // "bridge", "veth", ...; empty for hardware
   std::string alias;
   Wirekit::EthAddr ethAddr;
   uint32_t mtu = 0;        // octets of payload
   int32_t master = 0;      // index of the bridge, bond or VRF that it is a member of, 0 for none
   uint16_t vlanId = 0;     // of a VLAN device, 0 for none
   bool vlanAware = false;  // a bridge that tells VLANs apart
   bool ethernet = false;   // frames have Ethernet headers
   bool loopback = false;
   bool adminUp = false;
   bool carrier = false;
   uint8_t operState = 0;  // RFC 2863, ifOperStatus as the kernel numbers it
   bool operator==(const Link&) const = default;
};

// A device whose driver does not tell its state counts as up while it has a carrier.
Interface::LinkStatus linkStatus(const Link& link);

// Bridged while the device is administratively up, discarding while it is down. What stands
// between them, such as a cable that is pulled, is the link status's business alone; and whether
// the device is a member of a bridge or a bond makes no difference: it is a port all the same.
Interface::IntfForwardingModel forwardingModel(const Link& link);

// A port that a cable can be in: an Ethernet device of hardware, or one end of a veth pair, which
// is what a cable between two namespaces is. Bridges, bonds, VLAN, tunnel and dummy devices are
// none.
bool isPhysical(const Link& link);

// All of them by index. Listeners are told what was and what is; null where there is nothing.
class Links {
 public:
   using Listener = std::function<void(const Link* before, const Link* after)>;
   void listenerIs(Listener listener) { listeners_.push_back(std::move(listener)); }

   void linkIs(const Link& link);
   void linkDel(int32_t ifIndex);
   // All that there are, by index: what is not among them has gone. Listeners are told the
   // differences only, when all of them stand already.
   void linksAre(const std::map<int32_t, Link>& links);

   const std::map<int32_t, Link>& all() const { return all_; }
   const Link* at(int32_t ifIndex) const;
   const Link* named(const std::string& name) const;
   // Null also where the device itself or its master is not known.
   const Link* masterOf(int32_t ifIndex) const;
   // Indices of the devices that have this one as their master.
   const std::set<int32_t>& membersOf(int32_t ifIndex) const;

 private:
   void store(const Link& link);
   void leaveMaster(const Link& link);
   void tell(const Link* before, const Link* after) const;

   std::map<int32_t, Link> all_;
   std::map<int32_t, std::set<int32_t>> members_;  // by master; none is empty
   std::vector<Listener> listeners_;
};

}  // namespace Host
