// IPv6 addresses of the switch, by interface.
#pragma once

#include "Rex/Entity.h"
#include "Wirekit/IntfId.h"
#include "Wirekit/IpAddr.h"

namespace Ip6 {

struct AddressInfo {
   Wirekit::Ip6AddrWithMask addrWithMask;
   bool operator==(const AddressInfo&) const = default;
};
BOOST_DESCRIBE_STRUCT(AddressInfo, (), (addrWithMask))

struct IntfStatus : Rex::Entity {
   REX_ENTITY(IntfStatus, Rex::Entity)
   REX_KEY(Wirekit::IntfId, intfId)
   REX_VALUES(AddressInfo, addr, Wirekit::Ip6AddrWithMask, addrWithMask)
   REX_ENTITY_END()
   explicit IntfStatus(const Wirekit::IntfId& intfId) : intfId_(intfId) {}
};

struct Status : Rex::Entity {
   REX_ENTITY(Status, Rex::Entity)
   REX_CHILDREN(IntfStatus, ipIntfStatus, Wirekit::IntfId)
   REX_ENTITY_END()
};

}  // namespace Ip6
