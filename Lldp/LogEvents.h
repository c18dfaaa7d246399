// The agent's log events, as the operator reads them in syslog. Declared once here; every source
// module that raises events has handles of its own to them.
#pragma once

#include "Rex/Log.h"

namespace Lldp::Agent {

static const Rex::LogHandle LLDP_NEIGHBOR_NEW(
    "LLDP_NEIGHBOR_NEW", 5, "LLDP neighbor with chassisId %s and portId %s added on interface %s",
    "A new LLDP neighbor was added to the neighbor table.", Rex::NoActionRequired, 0.0, 1.0, 0);

static const Rex::LogHandle LLDP_NEIGHBOR_TIMEOUT(
    "LLDP_NEIGHBOR_TIMEOUT", 5,
    "LLDP neighbor with chassisId %s and portId %s timed out on interface %s",
    "An LLDP neighbor was deleted from the neighbor table since it timed out.",
    Rex::NoActionRequired, 0.0, 1.0, 0);

static const Rex::LogHandle LLDP_NEIGHBOR_GONE(
    "LLDP_NEIGHBOR_GONE", 5,
    "Received a shutdown frame from LLDP neighbor with chassisId %s and portId %s on interface %s",
    "An LLDP neighbor was deleted from the neighbor table since an LLDPDU with a TTL of 0 was "
    "received from that neighbor.",
    Rex::NoActionRequired, 0.0, 1.0, 0);

static const Rex::LogHandle LLDP_RX_RATELIMIT(
    "LLDP_RX_RATELIMIT", 4,
    "Exceeded Rx LLDPDU rate limit on %s (more than %d LLDPDUs in %f seconds)",
    "The switch received too many LLDPDUs on a port in too short a period of time, so we dropped "
    "the most recent received LLDPDU.",
    "This could indicate a mis-configured neighbor, or a network loop.  Check the configuration of "
    "the neighbor connected to the interface and configure the LLDPDUs to be sent at a reasonable "
    "rate and ensure there are no network loops.",
    60.0, 1.0, 0);

static const Rex::LogHandle LLDP_REMOTE_TABLES_CLEARED(
    "LLDP_REMOTE_TABLES_CLEARED", 5, "LLDP neighbor table cleared by %s on %s",
    "The LLDP neighbor table was cleared by a CLI command.", Rex::NoActionRequired, 0.0, 1.0, 0);

}  // namespace Lldp::Agent
