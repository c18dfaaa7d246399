// The TLVs of IEEE 802.3.
#include "Lldp/LldpExtDot3.h"
#include "OrganisationParser.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
   LldpFuzz::runParser(data, size, "LldpExtDot3", Lldp::Agent::parseExtDot3Tlv);
   return 0;
}
