// Which interfaces LLDP runs on, told by their names.
#pragma once

#include "Wirekit/IntfId.h"

namespace Lldp::Agent::Input {

// Physical front-panel Ethernet and management ports. Everything else, and an Ethernet port that is
// wired to no connector, never gets a row.
bool lldpCapable(const Wirekit::IntfId& intfId);

// Whether the management port belongs to the supervisor in that slot. The only management port of a
// fixed system has no slot in its name, so it belongs to none.
bool isLocalMgmtIntf(const Wirekit::IntfId& intfId, int slot);

}  // namespace Lldp::Agent::Input
