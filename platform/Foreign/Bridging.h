// The bridging agent's entities, as far as they are read here.
#pragma once

#include "Foreign/Vlan.h"
#include "Rex/Entity.h"
#include "Wirekit/EthAddr.h"
#include "Wirekit/IntfId.h"

namespace Bridging {

// What an interface does with the frames that it is given.
enum SwitchportMode {
   switchportAccess = 0,
   switchportTrunk = 1,
   switchportTunnel = 2,
   // The three monitoring modes take frames in, give out copies, or both, and send nothing of
   // the switch's own.
   switchportMonitorIn = 3,
   switchportMonitorOut = 4,
   switchportMonitorInOut = 5,
   switchportRouted = 6,
};
BOOST_DESCRIBE_ENUM(SwitchportMode, switchportAccess, switchportTrunk, switchportTunnel,
                    switchportMonitorIn, switchportMonitorOut, switchportMonitorInOut,
                    switchportRouted)

// One interface, physical or aggregated.
struct SwitchIntfConfig : Rex::Entity {
   REX_ENTITY(SwitchIntfConfig, Rex::Entity)
   REX_KEY(Wirekit::IntfId, intfId)
   REX_ATTRIBUTE(SwitchportMode, switchportMode)
   // The VLAN of untagged frames: of an access port its only one.
   REX_ATTRIBUTE(VlanId, nativeVlan)
   REX_ENTITY_END()
   explicit SwitchIntfConfig(const Wirekit::IntfId& intfId) : intfId_(intfId) {}
};

struct Config : Rex::Entity {
   REX_ENTITY(Config, Rex::Entity)
   REX_ATTRIBUTE(Wirekit::EthAddr, bridgeMacAddr)
   REX_CHILDREN(SwitchIntfConfig, switchIntfConfig, Wirekit::IntfId)
   REX_ENTITY_END()
};

struct HwCapabilities : Rex::Entity {
   REX_ENTITY(HwCapabilities, Rex::Entity)
   // The longest frame that a front-panel port passes on, in octets.
   REX_ATTRIBUTE(uint16_t, maxFrameSize)
   REX_ENTITY_END()
};

}  // namespace Bridging
