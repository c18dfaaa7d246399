// The operator's configuration of physical Ethernet interfaces.
#pragma once

#include "Rex/Entity.h"
#include "Wirekit/IntfId.h"

namespace Interface {

class EthPhyIntfConfig : public Rex::Entity {
   REX_ENTITY(EthPhyIntfConfig, Rex::Entity)
   REX_KEY(Wirekit::IntfId, intfId)
   REX_ATTRIBUTE(Rex::String, description)
   REX_ENTITY_END()

   explicit EthPhyIntfConfig(const Wirekit::IntfId& intfId) : intfId_(intfId) {}
};

class AllEthPhyIntfConfigDir : public Rex::Entity {
   REX_ENTITY(AllEthPhyIntfConfigDir, Rex::Entity)
   REX_POINTERS(EthPhyIntfConfig, intfConfig, Wirekit::IntfId, intfId)
   REX_ENTITY_END()
};

}  // namespace Interface
