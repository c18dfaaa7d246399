// What the kernel's messages about the network say (rtnetlink(7)). Of a message that is cut short
// or that says nothing of interest nothing is taken.
#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <variant>

#include "host/Feeders/Addresses.h"
#include "host/Feeders/Links.h"
#include "host/Feeders/PortVlans.h"

struct nlmsghdr;

namespace Host {

// RTM_NEWLINK and RTM_DELLINK. News of a bridge's ports and events of wireless devices come in the
// same form and are none of a device.
std::optional<Link> linkIn(const nlmsghdr& message);

// RTM_NEWADDR and RTM_DELADDR. An IPv6 address that another machine turned out to have, and that of
// the loopback network, count as gone.
struct AddressNews {
   int32_t ifIndex = 0;
   std::variant<Ip4Address, Wirekit::Ip6AddrWithMask> address;
   bool gone = false;
};
std::optional<AddressNews> addressIn(const nlmsghdr& message);

// The device whose VLANs may have changed, by any kind of news about bridge ports; 0 for none.
int32_t vlanNewsIn(const nlmsghdr& message);

// RTM_NEWVLAN of a dump: adds to what is known of the device.
void takeVlans(const nlmsghdr& message, std::map<int32_t, PortVlan>& vlans);

}  // namespace Host
