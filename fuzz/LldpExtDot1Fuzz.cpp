// The TLVs of IEEE 802.1.
#include "Lldp/LldpExtDot1.h"
#include "OrganisationParser.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
   LldpFuzz::runParser(data, size, "LldpExtDot1", Lldp::Agent::parseExtDot1Tlv);
   return 0;
}
