// IPv4 addresses of the switch, by interface.
#pragma once

#include "Foreign/L3.h"
#include "Rex/Entity.h"
#include "Wirekit/IntfId.h"
#include "Wirekit/IpAddr.h"

namespace Ip {

struct IpIntfStatus : Rex::Entity {
   REX_ENTITY(IpIntfStatus, Rex::Entity)
   REX_KEY(Wirekit::IntfId, intfId)
   // The interface's primary address; 0.0.0.0 for none.
   REX_ATTRIBUTE(Wirekit::IpAddrWithMask, activeAddrWithMask)
   // Further addresses; one with the value false does not count.
   REX_MAPPING(Wirekit::IpAddrWithMask, bool, secondaryWithMask)
   REX_ATTRIBUTE(Rex::Ptr<L3::Intf::Status>, l3Status)
   REX_ENTITY_END()
   explicit IpIntfStatus(const Wirekit::IntfId& intfId) : intfId_(intfId) {}
};

struct Status : Rex::Entity {
   REX_ENTITY(Status, Rex::Entity)
   REX_CHILDREN(IpIntfStatus, ipIntfStatus, Wirekit::IntfId)
   REX_ENTITY_END()
};

}  // namespace Ip
