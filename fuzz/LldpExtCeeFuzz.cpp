// The TLVs of Converged Enhanced Ethernet, of which only the port learns something.
#include "Lldp/LldpExtCee.h"
#include "OrganisationParser.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
   using namespace Lldp::Agent;
   Lldp::PortStatus::Ptr portStatus;
   LldpFuzz::runParser(
       data, size, "LldpExtCee",
       [&](int subtype, int length, const char* octets, const Lldp::RemoteSystem::Ptr&) {
          if (!portStatus) {
             portStatus = Rex::make<Lldp::Status>()->portStatusIs(Wirekit::IntfId("Et1"), 0.0);
          }
          uint32_t before = portStatus->ceeSeqNumToAck();
          TlvParseResult result = parseExtCeeTlv(subtype, length, octets, portStatus);
          bool control = subtype == 2 && length >= 8;
          REX_ASSERT((result == TlvParseResultOk) == control);
          REX_ASSERT(portStatus->ceeSeqNumToAck() == (control ? get32(octets + 4) : before));
          return result;
       });
   return 0;
}
