// Change detection: what a frame says against what its neighbour is known by.
#pragma once

#include "model/RemoteSystem.h"

namespace Lldp::Agent {

// Copies to `stored` every attribute that a frame can bring and in which `scratch` differs, and
// removes what `scratch` lacks. True if anything differed. An attribute or member that is equal is
// not written, so that its watchers run for real changes only.
bool copyChanges(const RemoteSystem& scratch, RemoteSystem& stored);

}  // namespace Lldp::Agent
