// TLVs that the agent keeps unread.
#pragma once

#include "cli/NeighborItem.h"

namespace LldpCli {

// "unknownTlvs": [{"type": 10, "value": "0a0b"}], "unknownOrganizationTlvs": [{"oui": "00-80-c2",
// "subtype": 9, "index": 1, "value": "0001", "name": "ETS Configuration"}]; the index tells those
// of one organisation and subtype apart, the name is left out when not known.
NeighborItems unknownItems();
std::string unknownOrganizationTlvWords(const Json& tlv);

}  // namespace LldpCli
