// The TLVs of LLDP-MED, with their locations and inventories.
#include "Lldp/LldpMed/LldpMed.h"
#include "OrganisationParser.h"

namespace {

// No more is kept of an address than its length has room for.
void checkCivicAddress(const Lldp::LocationId::CivicAddressLCI& lci) {
   if (!lci.valid) return;
   size_t octets = 1 + lci.countryCode.bytes();
   for (const auto& element : lci.caElements) octets += 2 + element.caValue.bytes();
   REX_ASSERT(octets <= lci.lciLength);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
   LldpFuzz::runParser(
       data, size, "LldpMed",
       [](int subtype, int length, const char* octets, const Lldp::RemoteSystem::Ptr& scratch) {
          auto result = Lldp::Agent::LldpMed::parseTlv(subtype, length, octets, scratch);
          checkCivicAddress(scratch->locationId().civicAddressLCI);
          return result;
       });
   return 0;
}
