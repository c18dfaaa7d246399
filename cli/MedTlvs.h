// The TLVs of LLDP-MED (ANSI/TIA-1057) but for locations.
#pragma once

#include "cli/NeighborItem.h"

namespace LldpCli {

// "medCapabilities", "networkPolicies", and the inventory, text by text; docs/cli.md has their
// shapes.
NeighborItems medItems();

}  // namespace LldpCli
