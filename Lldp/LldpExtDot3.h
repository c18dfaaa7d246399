// The Organizationally Specific TLVs of IEEE 802.3 (IEEE Std 802.3, Clause 79): all four are read;
// Power via MDI, Link Aggregation and Maximum Frame Size are sent. Numbers are big-endian.
#pragma once

#include "Lldp/LldpProtocol/Tlv.h"
#include "model/Config.h"
#include "model/LocalSystem.h"
#include "model/Status.h"

namespace Lldp::Agent {

// Reads one TLV into the scratch neighbour. `orgDefInfo` lies behind the subtype. A TLV too short
// for its fields is a fatal error. No field has a range: what is reserved today is kept as it came.
TlvParseResult parseExtDot3Tlv(int subtype, int orgDefInfoLen, const char* orgDefInfo,
                               const Rex::Ptr<Lldp::RemoteSystem>& remoteSystem);

// Adds what the port's configuration asks for, each TLV composed at `info` and tried whatever
// happened to the one before. False if any did not fit.
bool addExtDot3Tlvs(char** cursor, char* end, Lldp::LocalPort::PtrConst localPort,
                    Lldp::PortConfig::PtrConst portConfig, char* info,
                    Lldp::PortStatus::Ptr portStatus);

}  // namespace Lldp::Agent
