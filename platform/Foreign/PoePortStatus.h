// The power agent's report on one port that can feed a device (IEEE Std 802.3, clause 33).
#pragma once

#include "Rex/Entity.h"

namespace Environment::Power {

enum PoePortState {
   poePortUnknown = 0,
   poePortDisabled = 1,
   poePortSearching = 2,
   poePortDelivering = 3,
   poePortFault = 4,
};
BOOST_DESCRIBE_ENUM(PoePortState, poePortUnknown, poePortDisabled, poePortSearching,
                    poePortDelivering, poePortFault)

enum PoePowerPair {
   poePowerPairUnknown = 0,
   poePowerPairSignal = 1,  // alternative A
   poePowerPairSpare = 2,   // alternative B
};
BOOST_DESCRIBE_ENUM(PoePowerPair, poePowerPairUnknown, poePowerPairSignal, poePowerPairSpare)

enum PoePriority {
   poePriorityUnknown = 0,
   poePriorityCritical = 1,
   poePriorityHigh = 2,
   poePriorityLow = 3,
};
BOOST_DESCRIBE_ENUM(PoePriority, poePriorityUnknown, poePriorityCritical, poePriorityHigh,
                    poePriorityLow)

struct PoePortStatus : Rex::Entity {
   struct PortStatus {
      PoePortState state = poePortUnknown;
      uint32_t allowedPower = 0;  // what the device may draw, in 0.1 W
      uint8_t powerClass = 0;     // 0 to 4
      PoePowerPair powerPair = poePowerPairUnknown;
      PoePriority priority = poePriorityUnknown;
      bool operator==(const PortStatus&) const = default;
   };

   REX_ENTITY(PoePortStatus, Rex::Entity)
   REX_ATTRIBUTE(PortStatus, portStatus)
   REX_ENTITY_END()
};
BOOST_DESCRIBE_STRUCT(PoePortStatus::PortStatus, (),
                      (state, allowedPower, powerClass, powerPair, priority))

}  // namespace Environment::Power
