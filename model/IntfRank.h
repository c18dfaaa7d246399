// The rank of an interface's management address. A lower one is advertised earlier: loopbacks, then
// management ports, Ethernet ports by slot, port and lane, link aggregation groups, and VLAN
// interfaces by number.
#pragma once

#include <cstdint>

#include "Wirekit/IntfId.h"

namespace Lldp {

inline constexpr uint32_t managementPriorityBase = 2103;
inline constexpr uint32_t ethernetPriorityBase = 3394;
inline constexpr uint32_t portChannelPriorityBase = 531779;
inline constexpr uint32_t vlanPriorityBase = 1531779;
inline constexpr uint32_t maxSlotId = 128;
inline constexpr uint32_t mgmtIntfPerSlot = 10;
inline constexpr uint32_t phyIntfPerSlot = 128;

struct IntfRank {
   uint32_t primaryPriority = 0;  // 0 for an interface of another kind
   // What the interface's numbers break, such as those of a slot above 128; null for nothing. An
   // interface with a fault must not come to be ranked.
   const char* fault = nullptr;
};

IntfRank intfRank(const Wirekit::IntfId& intfId);

}  // namespace Lldp
