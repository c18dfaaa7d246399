// Building a whole LLDPDU from the local model.
#pragma once

#include "model/Config.h"
#include "model/LocalSystem.h"
#include "model/Status.h"

namespace Lldp::Agent::Protocol {
class Root;
}

namespace Lldp::Agent {

// Writes one LLDPDU for the port and returns the place behind its last octet. `root` gives the
// local system, whose chassis identifier has to have a value, and so has the port's identifier.
// The buffer holds a whole frame's payload of 1500 octets, which the mandatory and basic TLVs
// always fit; a later TLV that does not fit is left out, and the frame counted in
// `txFramesLengthExceeded`. Not reentrant, as `infoBuf` is one.
char* buildTxLldpdu(char* begin, char* end, Rex::Ptr<const Protocol::Root> root,
                    LocalPort::PtrConst localPort, PortConfig::PtrConst portConfig,
                    PortStatus::Ptr portStatus);

// Adds the address; the default value is none and adds nothing. False if it does not fit.
bool putManagementAddress(char** cursor, char* end, const ManagementAddress& address);

// Adds the TLVs that other agents want sent on the port, composed at `info`, in the order of their
// keys and each dropped alone. False if one did not fit. The first CEE control TLV ends them; it
// goes out with the acknowledgement number of the peer's latest one.
bool addExternalTlvs(char** cursor, char* end, LocalPort::PtrConst localPort, char* info,
                     PortStatus::Ptr portStatus);

}  // namespace Lldp::Agent
