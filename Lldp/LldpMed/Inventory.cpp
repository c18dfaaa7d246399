#include "Lldp/LldpMed/Inventory.h"

#include "Lldp/LldpMed/Trace.h"

namespace Lldp::Agent::Inventory {

TlvParseResult parseTlv(int orgDefInfoLen, const char* orgDefInfo, const char* tlvName,
                        std::function<void(const Lldp::BoundedString32Tlv&)> store) {
   if (orgDefInfoLen < 0) {
      TRACE(medTrace, 0,
            "Error: LLDP-MED " << tlvName << " TLV is too short (orgDefInfoLen=" << orgDefInfoLen
                               << ")");
      return TlvParseResultFatalError;
   }
   if (orgDefInfoLen > static_cast<int>(BoundedString32::maxBytes)) {
      TRACE(medTrace, 0,
            "Error: LLDP-MED " << tlvName << " TLV is too big (orgDefInfoLen=" << orgDefInfoLen
                               << ")");
      return TlvParseResultFatalError;
   }
   BoundedString32 text(orgDefInfo, static_cast<size_t>(orgDefInfoLen));
   TRACE(medTrace, 8, "LLDP-MED " << tlvName << " TLV has value: " << text);
   store(BoundedString32Tlv::create(text));
   return TlvParseResultOk;
}

}  // namespace Lldp::Agent::Inventory
