// A management address that further interfaces have as their active one while the first holds it.
// Whoever publishes an address first holds it, whatever its rank; the others wait here.
#pragma once

#include "Rex/Entity.h"
#include "Wirekit/IntfId.h"
#include "model/Basic.h"

namespace Lldp::Agent::Input {

class Root;

struct SkippedAddr : Rex::Entity {
   REX_ENTITY(SkippedAddr, Rex::Entity)
   REX_KEY(ManagementAddress::Key, key)
   REX_MAPPING(Wirekit::IntfId, bool, intf)
   REX_ENTITY_END()
   explicit SkippedAddr(const ManagementAddress::Key& key) : key_(key) {}
};

void addSkippedAddr(const ManagementAddress::Key& key, const Wirekit::IntfId& intfId,
                    const Rex::Ptr<Root>& root);
void removeSkippedAddr(const ManagementAddress::Key& key, const Wirekit::IntfId& intfId,
                       const Rex::Ptr<Root>& root);

// Offers an address that has become free to those who wait for it. The lowest interface takes it.
void handleSkippedManAddrs(const ManagementAddress::Key& key, const Rex::Ptr<Root>& root);

}  // namespace Lldp::Agent::Input
