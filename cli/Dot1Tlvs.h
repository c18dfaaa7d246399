// The TLVs of IEEE 802.1 (IEEE Std 802.1Q, Annex D).
#pragma once

#include "cli/NeighborItem.h"

namespace LldpCli {

// "portVlanId": 7, "protocolVlans": [{"vlanId": 8, "supported": true, "enabled": false}],
// "vlanNames": [{"vlanId": 9, "name": "voice"}], "protocolIdentities": [{"index": 1, "identity":
// "88cc"}], "vidUsageDigest": "0x0a0b0c0d", "managementVid": 10
NeighborItems dot1Items();

}  // namespace LldpCli
