// VLAN numbers (IEEE Std 802.1Q, 9.6).
#pragma once

#include "Rex/Value.h"

namespace Bridging {

struct VlanIdWords {
   static constexpr const char* text = "VlanId::value < 1 or > 4094 not allowed";
};
using VlanId = Rex::BoundedNumber<uint16_t, 1, 4094, VlanIdWords>;

// 0 means none.
struct VlanIdOrNoneWords {
   static constexpr const char* text = "VlanIdOrNone::value > 4094 not allowed";
};
using VlanIdOrNone = Rex::BoundedNumber<uint16_t, 0, 4094, VlanIdOrNoneWords>;

}  // namespace Bridging
