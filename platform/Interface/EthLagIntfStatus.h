// Status of link aggregation groups and their members.
#pragma once

#include "Rex/Entity.h"
#include "Wirekit/IntfId.h"

namespace Interface {

// A port as a member of a group.
class EthIntfStatus : public Rex::Entity {
   REX_ENTITY(EthIntfStatus, Rex::Entity)
   REX_KEY(Wirekit::IntfId, intfId)
   REX_ENTITY_END()

   explicit EthIntfStatus(const Wirekit::IntfId& intfId) : intfId_(intfId) {}
};

class EthLagIntfStatus : public Rex::Entity {
   REX_ENTITY(EthLagIntfStatus, Rex::Entity)
   REX_KEY(Wirekit::IntfId, intfId)
   REX_CHILDREN(EthIntfStatus, member, Wirekit::IntfId)
   REX_ENTITY_END()

   explicit EthLagIntfStatus(const Wirekit::IntfId& intfId) : intfId_(intfId) {}
};

class EthLagIntfStatusDir : public Rex::Entity {
   REX_ENTITY(EthLagIntfStatusDir, Rex::Entity)
   REX_POINTERS(EthLagIntfStatus, intfStatus, Wirekit::IntfId, intfId)
   REX_ENTITY_END()
};

}  // namespace Interface
