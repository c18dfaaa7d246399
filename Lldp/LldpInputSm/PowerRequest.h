// Which neighbour of a port asks for power (IEEE Std 802.3, 79.3.2).
#pragma once

#include <vector>

#include "model/Status.h"

namespace Lldp::Agent::Input {

// Whether the neighbour's power data counts as a request: the long form of the TLV, from a device.
bool shouldPoeDataFromPowerViaMdiBePublished(const Lldp::RemoteSystem& remoteSystem);

// The neighbour whose request the port answers: of several with one source address the one heard
// last, and the first in the order of the table of two heard at once. Null for none, and for
// requests from different source addresses.
Lldp::RemoteSystem::PtrConst findRemoteSystemWithPowerRequest(
    Lldp::PortStatus::PtrConst portStatus);
// The same of those that are known to ask, in the order of the table.
Lldp::RemoteSystem::PtrConst chooseRemoteSystem(
    const Wirekit::IntfId& intfId, const std::vector<Lldp::RemoteSystem::PtrConst>& asking);

}  // namespace Lldp::Agent::Input
