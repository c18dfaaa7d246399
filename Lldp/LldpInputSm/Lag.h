// A port as a member of a link aggregation group.
//
// A member does not speak for itself: its VLAN and its switchport mode are those of its group. The
// interface that governs a port is its group, or else the port itself.
#pragma once

#include "Rex/Ptr.h"
#include "Wirekit/IntfId.h"
#include "model/LocalSystem.h"

namespace Lldp::Agent::Input {

class Root;

// The group that the port counts as a member of, or the empty IntfId. Of two groups, while the port
// moves from one to the other, it is the smaller one.
Wirekit::IntfId portToLag(const Wirekit::IntfId& portId, const Rex::Ptr<Root>& root);

// The interface whose switchport configuration governs a port of that group.
inline const Wirekit::IntfId& governingIntf(const Wirekit::IntfId& portId,
                                            const Wirekit::IntfId& lag) {
   return lag.empty() ? portId : lag;
}
Wirekit::IntfId governingIntf(const Wirekit::IntfId& portId, const Rex::Ptr<Root>& root);

// Records the membership, whether or not the port exists, and moves the port if its group changed.
void addLagMember(const Wirekit::IntfId& portId, const Wirekit::IntfId& lagId,
                  const Rex::Ptr<Root>& root);
// The same for the end of a membership, which must have been recorded.
void removeLagMember(const Wirekit::IntfId& portId, const Wirekit::IntfId& lagId,
                     const Rex::Ptr<Root>& root);

// Tells everybody who depends on the port's group that it is another one. Empty means none.
void notifyPortLagChange(const Wirekit::IntfId& portId, const Wirekit::IntfId& oldLag,
                         const Wirekit::IntfId& newLag, const Rex::Ptr<Root>& root);

// Brings the port's link aggregation information in line with its group.
void syncLinkAggregationInfo(const LocalPort::Ptr& localPort, const Rex::Ptr<Root>& root);

}  // namespace Lldp::Agent::Input
