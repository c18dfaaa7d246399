// The codec's trace facility.
#pragma once

#include "Rex/Trace.h"

namespace Lldp::Agent {

inline const Rex::TraceHandle codecTrace("LldpProtocol", false);

}  // namespace Lldp::Agent
