#include "model/IntfRank.h"

#include "Wirekit/EthIntfId.h"
#include "Wirekit/LoopbackIntfId.h"
#include "Wirekit/MgmtIntfId.h"
#include "Wirekit/PortChannelIntfId.h"
#include "Wirekit/VlanIntfId.h"

namespace Lldp {
namespace {

using namespace Wirekit;

constexpr uint32_t lanesPerPort = 32;

struct Bound {
   bool holds;
   const char* words;
};

// The first bound that does not hold is the fault.
template <size_t count>
IntfRank ranked(uint32_t primaryPriority, const Bound (&bounds)[count]) {
   for (const Bound& bound : bounds) {
      if (!bound.holds) return {primaryPriority, bound.words};
   }
   return {primaryPriority};
}

IntfRank loopbackRank(uint32_t loopback) {
   uint32_t rank = loopback + 2;
   return ranked(rank, {{rank < managementPriorityBase,
                         "manAddrPriority->primaryPriority() < managementPriorityBase"}});
}

IntfRank managementRank(uint32_t slotId, uint32_t port) {
   uint32_t rank = managementPriorityBase + mgmtIntfPerSlot * slotId + port;
   return ranked(rank, {{rank < ethernetPriorityBase,
                         "manAddrPriority->primaryPriority() < ethernetPriorityBase"},
                        {slotId <= maxSlotId, "slotId <= maxSlotId"},
                        {port <= mgmtIntfPerSlot, "port <= mgmtIntfPerSlot"}});
}

// Ports count from 1. The arithmetic wraps: a port 0 without a module, which no switch has, comes
// out before the first Ethernet port.
IntfRank ethernetRank(uint32_t slotId, uint32_t port, uint32_t lane) {
   uint32_t rank =
       ethernetPriorityBase + lanesPerPort * (phyIntfPerSlot * slotId + port - 1) + lane;
   return ranked(rank, {{rank < portChannelPriorityBase,
                         "manAddrPriority->primaryPriority() < portChannelPriorityBase"},
                        {slotId <= maxSlotId, "slotId <= maxSlotId"},
                        {port <= phyIntfPerSlot, "port <= phyIntfPerSlot"}});
}

IntfRank portChannelRank(uint32_t channel) {
   uint32_t rank = portChannelPriorityBase + channel;
   return ranked(
       rank, {{rank < vlanPriorityBase, "manAddrPriority->primaryPriority() < vlanPriorityBase"}});
}

}  // namespace

IntfRank intfRank(const IntfId& intfId) {
   if (LoopbackIntfId::isLoopbackIntfId(intfId)) {
      return loopbackRank(LoopbackIntfId::loopback(intfId));
   }
   if (MgmtIntfId::isMgmtIntfId(intfId)) {
      return managementRank(MgmtIntfId::module(intfId), MgmtIntfId::port(intfId));
   }
   if (EthIntfId::isEthIntfId(intfId)) {
      return ethernetRank(EthIntfId::module(intfId), EthIntfId::port(intfId),
                          EthIntfId::lane(intfId));
   }
   if (PortChannelIntfId::isPortChannelIntfId(intfId)) {
      return portChannelRank(PortChannelIntfId::channel(intfId));
   }
   if (VlanIntfId::isVlanIntfId(intfId)) return {vlanPriorityBase + VlanIntfId::vlan(intfId)};
   return {};
}

}  // namespace Lldp
