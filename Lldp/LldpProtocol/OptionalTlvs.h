// What follows the three mandatory TLVs of a received LLDPDU, read into a scratch neighbour.
#pragma once

#include "Lldp/LldpProtocol/Tlv.h"
#include "model/Status.h"

namespace Lldp::Agent {

// Reads TLVs from `cursor` to End of LLDPDU or the frame's end. The scratch neighbour gets what
// they say, `portStatus` the counters of TLVs. Sets `*frameError` if one was bad or cut off.
// False at a fatal error: the frame is to be dropped whole.
bool parseOptionalTlvs(const char* cursor, const char* end, const RemoteSystem::Ptr& remoteSystem,
                       const PortStatus::Ptr& portStatus, bool* frameError);

// System Capabilities (IEEE Std 802.1AB-2016, 8.5.8).
TlvParseResult parseSystemCapabilitiesTlv(int infoLen, const char* info,
                                          const RemoteSystem::Ptr& remoteSystem);

// Management Address (8.5.9): length of subtype and address (1 octet), subtype (1), address,
// ifSubtype (1), ifNumber (4), length of the object identifier (1), object identifier.
TlvParseResult parseManagementAddressTlv(int infoLen, const char* info,
                                         const RemoteSystem::Ptr& remoteSystem);

// Organizationally Specific (8.6.1): OUI (3), subtype (1), the organisation's own information, for
// the organisation's parser. What none knows is kept unread, numbered by `parseContext` in the
// order of the frame.
TlvParseResult parseOrganizationallySpecificTlv(
    int infoLen, const char* info, const RemoteSystem::Ptr& remoteSystem,
    const PortStatus::Ptr& portStatus, const UnknownOrgDefTlvParseContext::Ptr& parseContext);

}  // namespace Lldp::Agent
