// Status of physical Ethernet interfaces, front-panel and management ports alike.
#pragma once

#include "Interface/IntfForwardingModel.h"
#include "Interface/LinkStatus.h"
#include "Rex/Entity.h"
#include "Wirekit/EthAddr.h"
#include "Wirekit/IntfId.h"

namespace Interface {

class EthPhyIntfStatus : public Rex::Entity {
   REX_ENTITY(EthPhyIntfStatus, Rex::Entity)
   REX_KEY(Wirekit::IntfId, intfId)
   REX_ATTRIBUTE(LinkStatus, linkStatus, linkUnknown)
   REX_ATTRIBUTE(Wirekit::EthAddr, ethAddr)
   REX_ATTRIBUTE(IntfForwardingModel, forwardingModel, intfForwardingUnknown)
   REX_ATTRIBUTE(uint16_t, maxMtu)  // octets of payload
   REX_ENTITY_END()

   explicit EthPhyIntfStatus(const Wirekit::IntfId& intfId) : intfId_(intfId) {}
};

class AllEthPhyIntfStatusDir : public Rex::Entity {
   REX_ENTITY(AllEthPhyIntfStatusDir, Rex::Entity)
   REX_POINTERS(EthPhyIntfStatus, intfStatus, Wirekit::IntfId, intfId)
   REX_ENTITY_END()
};

}  // namespace Interface
