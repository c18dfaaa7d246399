// The TLVs of IEEE 802.3 (IEEE Std 802.3, Clause 79).
#pragma once

#include "cli/NeighborItem.h"

namespace LldpCli {

// "macPhy", "powerViaMdi", "linkAggregation", "maximumFrameSize"; docs/cli.md has their shapes.
NeighborItems dot3Items();

// 12.9 from tenths of a watt, and 12.9 W.
Json watts(const Json& tenths);
std::string wattsWords(const Json& watts);

}  // namespace LldpCli
