// Which part a supervisor plays.
#pragma once

#include "Rex/Entity.h"

namespace Redundancy {

enum Protocol {
   protocolUnknown = 0,
   protocolNone = 1,         // one supervisor
   protocolColdStandby = 2,  // the other supervisor starts its agents when it takes over
   protocolHotStandby = 3,   // the other supervisor's agents run, and wait
};
BOOST_DESCRIBE_ENUM(Protocol, protocolUnknown, protocolNone, protocolColdStandby,
                    protocolHotStandby)

enum Mode {
   modeUnknown = 0,
   modeStarting = 1,
   modeDisabled = 2,
   modeStandby = 3,
   modeTakingOver = 4,
   modeActive = 5,
};
BOOST_DESCRIBE_ENUM(Mode, modeUnknown, modeStarting, modeDisabled, modeStandby, modeTakingOver,
                    modeActive)

struct RedundancyStatus : Rex::Entity {
   REX_ENTITY(RedundancyStatus, Rex::Entity)
   REX_ATTRIBUTE(Protocol, protocol)
   REX_ATTRIBUTE(Mode, mode)
   REX_ENTITY_END()
};

}  // namespace Redundancy
