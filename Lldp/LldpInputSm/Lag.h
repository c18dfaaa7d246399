// A port as a member of a link aggregation group.
#pragma once

#include <cstdint>

#include "Rex/Ptr.h"
#include "Wirekit/IntfId.h"
#include "model/LocalSystem.h"

namespace Lldp::Agent::Input {

class Root;

// The group that the port counts as a member of, or the empty IntfId. Of two groups, while the port
// moves from one to the other, it is the smaller one.
Wirekit::IntfId portToLag(const Wirekit::IntfId& portId, const Rex::Ptr<Root>& root);

// The interface whose switchport configuration governs the port: its group, or else itself.
Wirekit::IntfId governingIntf(const Wirekit::IntfId& portId, const Rex::Ptr<Root>& root);

// Brings the port's link aggregation information in line with its group.
void syncLinkAggregationInfo(const LocalPort::Ptr& localPort, const Rex::Ptr<Root>& root);

// The interface's number; -1 for an interface without status or without a number.
int32_t ifIndexVal(const Wirekit::IntfId& intfId, const Rex::Ptr<Root>& root);

}  // namespace Lldp::Agent::Input
