// The seven Inventory TLVs of LLDP-MED (ANSI/TIA-1057, 10.2.6), which differ in their subtype only.
#pragma once

#include <functional>

#include "Lldp/LldpProtocol/Tlv.h"

namespace Lldp::Agent::Inventory {

// Hands the text to `store`. An empty text is a text; one above 32 octets is a fatal error, unlike
// a system name that is too long, which is cut.
TlvParseResult parseTlv(int orgDefInfoLen, const char* orgDefInfo, const char* tlvName,
                        std::function<void(const Lldp::BoundedString32Tlv&)> store);

}  // namespace Lldp::Agent::Inventory
