// The Organizationally Specific TLV of Converged Enhanced Ethernet's control protocol. The
// negotiation belongs to another agent; what has to happen in step with the frames is done here:
// the peer's latest sequence number is kept, to be acknowledged in the outgoing TLV.
#pragma once

#include <cstdint>

#include "Lldp/LldpProtocol/Tlv.h"
#include "model/Status.h"

namespace Lldp::Agent {

// The cursor of one parse.
struct LldpExtCeeParser {
   unsigned size = 0;           // octets behind the subtype
   const char* data = nullptr;  // they
   unsigned offset = 0;
   int subtype = 0;
   Rex::Ptr<Lldp::PortStatus> portStatus;
   const char* tlvName = nullptr;  // null until the TLV is named

   TlvParseResult parse();

 private:
   uint8_t octet();  // at the cursor, which moves on; throws std::out_of_range at the end
};

// Writes the sequence number of a Control TLV straight to the port, since it is no attribute of a
// neighbour: a fatal error later in the frame does not take it back.
TlvParseResult parseExtCeeTlv(int subtype, int orgDefInfoLen, const char* orgDefInfo,
                              Rex::Ptr<Lldp::PortStatus> portStatus);

}  // namespace Lldp::Agent
