// The Organizationally Specific TLVs of LLDP-MED (ANSI/TIA-1057). Capabilities, network policy,
// location and inventory are read; capabilities and network policy are sent, once a neighbour has
// spoken LLDP-MED: a network connectivity device keeps silent until then.
#pragma once

#include "Lldp/LldpProtocol/Tlv.h"
#include "model/Config.h"
#include "model/LocalSystem.h"
#include "model/Status.h"

namespace Lldp::Agent::LldpMed {

// Adds what the port is to say, each TLV composed at `info`. False if one did not fit.
bool addTlvs(char** cursor, char* end, Lldp::LocalPort::PtrConst localPort,
             Lldp::PortConfig::PtrConst portConfig, char* info, Lldp::PortStatus::Ptr portStatus);

// Reads one TLV into the scratch neighbour. `orgDefInfo` lies behind the subtype. A TLV too short
// for its fields is a fatal error; fields are kept as they came.
TlvParseResult parseTlv(int subtype, int orgDefInfoLen, const char* orgDefInfo,
                        const Rex::Ptr<Lldp::RemoteSystem>& remoteSystem);

}  // namespace Lldp::Agent::LldpMed
