// Status of interfaces of every kind: ports, groups, VLAN interfaces, loopbacks.
#pragma once

#include "Rex/Entity.h"
#include "Wirekit/IntfId.h"
#include "Wirekit/NamespaceName.h"

namespace Interface {

class IntfStatus : public Rex::Entity {
   REX_ENTITY(IntfStatus, Rex::Entity)
   REX_KEY(Wirekit::IntfId, intfId)
   REX_ATTRIBUTE(int32_t, ifIndex)         // 0: not numbered
   REX_ATTRIBUTE(Rex::String, deviceName)  // empty: no device stands behind it
   REX_ATTRIBUTE(Wirekit::NamespaceName, netNs)
   REX_ENTITY_END()

   explicit IntfStatus(const Wirekit::IntfId& intfId) : intfId_(intfId) {}
};

// The interfaces of the whole switch.
class AllIntfStatusDir : public Rex::Entity {
   REX_ENTITY(AllIntfStatusDir, Rex::Entity)
   REX_POINTERS(IntfStatus, intfStatus, Wirekit::IntfId, intfId)
   REX_ENTITY_END()
};

// Those that this cell itself has.
class AllIntfStatusLocalDir : public Rex::Entity {
   REX_ENTITY(AllIntfStatusLocalDir, Rex::Entity)
   REX_POINTERS(IntfStatus, intfStatus, Wirekit::IntfId, intfId)
   REX_ENTITY_END()
};

}  // namespace Interface
