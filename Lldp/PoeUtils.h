// The information of a Power via MDI TLV that this switch sends, as a PSE (IEEE Std 802.3, 79.3.2).
#pragma once

#include "model/Config.h"
#include "model/LocalSystem.h"
#include "model/Status.h"

namespace Lldp::Agent::PoeUtils {

// Composes at `info` what the power agent reports of the port, and returns the length in octets: 8,
// or 3 for the short form while no neighbour sends the TLV itself (`tlvReceived`), which is the
// form that every receiver knows. `poeInfo` is ready to be sent.
int buildPowerViaMdiTlv(char* info, const Lldp::LocalPortPoeInfo& poeInfo, bool tlvReceived);

// The same for a port of which the power agent says nothing, with the power that the operator has
// set aside for it; 0, for no TLV, if that is none.
int maybeBuildFallbackPowerViaMdiTlv(char* info, const Lldp::LocalPortPoeInfo& poeInfo,
                                     bool tlvReceived, Rex::Ptr<const Lldp::PortConfig> portConfig,
                                     Rex::Ptr<Lldp::PortStatus> portStatus);

}  // namespace Lldp::Agent::PoeUtils
