// Management addresses as LocalSystem tells them, and what stands in when there is none.
#pragma once

#include <cstdint>

#include "Foreign/Vlan.h"
#include "Wirekit/EthAddr.h"
#include "Wirekit/IntfId.h"
#include "Wirekit/IpAddr.h"
#include "model/LocalSystem.h"

namespace Lldp::Agent::Input {

class Root;

// The rank of the fallback address, and that of the active address of the interface which the
// operator names. Both come before the ranks of all interfaces.
extern const ManAddrPriority fallbackManAddrPriority;
extern const ManAddrPriority sourceIntfManAddrPriority;

// Fills in the interface's rank; `type` stays. `vlanId`, if it is asked for, is a VLAN interface's
// number, or else none. The interface's numbers must have a rank.
void intfNameToVlanIdAndManAddrPriority(const Wirekit::IntfId& intfId,
                                        Bridging::VlanIdOrNone* vlanId,
                                        ManAddrPriority* manAddrPriority);

// The row of an address of the interface with that number, which must not be negative.
ManagementAddress makeManagementAddress(int32_t ifIndex, const ManagementAddress::Key& key);
ManagementAddress::Key ip4Key(const Wirekit::IpAddr& addr);

// The fallback address is told as long as there is no other. Its row in `managementAddress` stands
// always; only its rank comes and goes.
void replaceFallbackManAddr(const Wirekit::EthAddr& bridgeMacAddr, const Rex::Ptr<Root>& root);
void maybeAddFallbackManAddr(const Rex::Ptr<Root>& root);
void removeFallbackManAddr(const Rex::Ptr<Root>& root);

}  // namespace Lldp::Agent::Input
