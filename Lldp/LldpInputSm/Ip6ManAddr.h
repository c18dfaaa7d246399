// The one IPv6 management address: the lowest of the interface that the operator names.
#pragma once

#include <cstdint>

#include "Foreign/Ip6.h"
#include "model/LocalSystem.h"

namespace Lldp::Agent::Input {

class Root;

// The numerically lowest address that is not link-local; all zero for none. The order in which the
// addresses came does not matter. The highest address there is counts as none.
Wirekit::Ip6Addr getStableIp6Addr(const Ip6::IntfStatus::PtrConst& ip6IntfStatus);

// The row of the address, none for all zero. `ifIndex` must not be negative.
ManagementAddress makeIp6ManagementAddress(int32_t ifIndex, const Wirekit::Ip6Addr& addr);

// Tells no IPv6 address from here on. Where none is told, nothing happens at all.
void clearIp6ManagementAddress(const Rex::Ptr<Root>& root);

}  // namespace Lldp::Agent::Input
