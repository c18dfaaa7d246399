// The Organizationally Specific TLVs of IEEE 802.1 (IEEE Std 802.1Q, Annex D): all seven are read,
// Port VLAN ID is sent. Numbers are big-endian.
#pragma once

#include "Lldp/LldpProtocol/Tlv.h"
#include "model/Config.h"
#include "model/LocalSystem.h"

namespace Lldp::Agent {

// Reads one TLV into the scratch neighbour. `orgDefInfo` lies behind the subtype. A TLV too short
// for its fields is a fatal error, a field out of range an error of the TLV alone.
TlvParseResult parseExtDot1Tlv(int subtype, int orgDefInfoLen, const char* orgDefInfo,
                               const Rex::Ptr<Lldp::RemoteSystem>& remoteSystem);

// Adds what the port's configuration asks for, composed at `info`. False if it did not fit.
bool addExtDot1Tlvs(char** cursor, char* end, Lldp::LocalPort::PtrConst localPort,
                    Lldp::PortConfig::PtrConst portConfig, char* info);

}  // namespace Lldp::Agent
