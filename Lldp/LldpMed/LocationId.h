// The Location Identification TLV of LLDP-MED (ANSI/TIA-1057, 10.2.4): a format octet, then the
// location. It is read, never sent.
#pragma once

#include "Lldp/LldpProtocol/Tlv.h"
#include "model/RemoteSystem.h"

namespace Lldp::Agent::LocationId {

// Reads one format into its part of the scratch neighbour's location; the other parts stay. A
// structure that is too short is a fatal error; a length that merely disagrees, or content that is
// not expected, keeps what could be read.
TlvParseResult parseTlv(int orgDefInfoLen, const char* orgDefInfo,
                        const Rex::Ptr<Lldp::RemoteSystem>& remoteSystem);

}  // namespace Lldp::Agent::LocationId
