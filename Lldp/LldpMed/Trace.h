// The trace facility of LLDP-MED.
#pragma once

#include "Rex/Trace.h"

namespace Lldp::Agent {

inline const Rex::TraceHandle medTrace("LldpMed", false);

}  // namespace Lldp::Agent
