// Where a neighbour is, from the Location Identification TLV of LLDP-MED.
#pragma once

#include "cli/NeighborItem.h"

namespace LldpCli {

// "location", with what was sent of "coordinates", "civicAddress" and "elin"; docs/cli.md has their
// shapes.
NeighborItems locationItems();

}  // namespace LldpCli
