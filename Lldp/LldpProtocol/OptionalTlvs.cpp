#include "Lldp/LldpProtocol/OptionalTlvs.h"

#include <algorithm>

#include "Lldp/LldpExtCee.h"
#include "Lldp/LldpExtDot1.h"
#include "Lldp/LldpExtDot3.h"
#include "Lldp/LldpMed/LldpMed.h"
#include "Lldp/LldpProtocol/Oid.h"
#include "Lldp/LldpProtocol/Trace.h"

namespace Lldp::Agent {
namespace {

// A text that is too long is cut; an empty one is present all the same.
BoundedString255Tlv textTlv(int infoLen, const char* info) {
   int length = std::min(infoLen, static_cast<int>(BoundedString255::maxBytes));
   return BoundedString255Tlv::create(BoundedString255(info, static_cast<size_t>(length)));
}

// What lies behind the subtype, by its organisation's parser.
TlvParseResult parseKnownOrganisation(Oui oui, int subtype, int orgDefInfoLen,
                                      const char* orgDefInfo, const RemoteSystem::Ptr& remoteSystem,
                                      const PortStatus::Ptr& portStatus) {
   if (oui == dot1Oui) {
      TRACE(codecTrace, 8, "802.1 TLV");
      return parseExtDot1Tlv(subtype, orgDefInfoLen, orgDefInfo, remoteSystem);
   }
   if (oui == ceeOui) {
      TRACE(codecTrace, 8, "Cee TLV");
      return parseExtCeeTlv(subtype, orgDefInfoLen, orgDefInfo, portStatus);
   }
   if (oui == dot3Oui) {
      TRACE(codecTrace, 8, "802.3 TLV");
      return parseExtDot3Tlv(subtype, orgDefInfoLen, orgDefInfo, remoteSystem);
   }
   if (oui == tiaOui) {
      TRACE(codecTrace, 8, "TIA TLV");
      return LldpMed::parseTlv(subtype, orgDefInfoLen, orgDefInfo, remoteSystem);
   }
   TRACE(codecTrace, 8, "Unknown OUI");
   return TlvParseResultUnrecognized;
}

TlvParseResult parseOptionalTlv(int type, int infoLen, const char* info,
                                const RemoteSystem::Ptr& remoteSystem,
                                const PortStatus::Ptr& portStatus,
                                const UnknownOrgDefTlvParseContext::Ptr& parseContext) {
   switch (type) {
      case tlvEnd:
         TRACE(codecTrace, 6, "End of LLDPDU");
         return TlvParseResultEnd;
      case tlvChassisId:
      case tlvPortId:
      case tlvTimeToLive:
         TRACE(codecTrace, 0, "Error: frame contains duplicate TLV of type " << type);
         return TlvParseResultFatalError;
      case tlvPortDescription: {
         BoundedString255Tlv text = textTlv(infoLen, info);
         TRACE(codecTrace, 6, "Port Description: " << text.tlvInfo);
         remoteSystem->portDescIs(text);
         return TlvParseResultOk;
      }
      case tlvSystemName: {
         BoundedString255Tlv text = textTlv(infoLen, info);
         TRACE(codecTrace, 6, "System Name: " << text.tlvInfo);
         remoteSystem->sysNameIs(text);
         return TlvParseResultOk;
      }
      case tlvSystemDescription: {
         BoundedString255Tlv text = textTlv(infoLen, info);
         TRACE(codecTrace, 6, "System Description: " << text.tlvInfo);
         remoteSystem->sysDescIs(text);
         return TlvParseResultOk;
      }
      case tlvSystemCapabilities:
         return parseSystemCapabilitiesTlv(infoLen, info, remoteSystem);
      case tlvManagementAddress:
         return parseManagementAddressTlv(infoLen, info, remoteSystem);
      case tlvOrganizationallySpecific:
         return parseOrganizationallySpecificTlv(infoLen, info, remoteSystem, portStatus,
                                                 parseContext);
      default: {
         UnknownTlv tlv{static_cast<uint32_t>(type),
                        BoundedString511(info, static_cast<size_t>(infoLen))};
         TRACE(codecTrace, 6, "Unrecognized TLV: " << tlv);
         remoteSystem->unknownTlvIs(tlv);
         return TlvParseResultUnrecognized;
      }
   }
}

}  // namespace

bool parseOptionalTlvs(const char* cursor, const char* end, const RemoteSystem::Ptr& remoteSystem,
                       const PortStatus::Ptr& portStatus, bool* frameError) {
   auto parseContext = Rex::make<UnknownOrgDefTlvParseContext>();
   while (cursor < end) {
      int type = 0;
      int infoLen = 0;
      const char* info = nullptr;
      if (!extractTlv(&cursor, end, &type, &infoLen, &info)) {
         // A frame that is cut off here is not fatal: what was read so far counts.
         TRACE(codecTrace, 0, "Error: frame ended during optional TLV");
         portStatus->rxTLVsDiscardedTotalInc(1);
         *frameError = true;
         return true;
      }
      TlvParseResult result =
          parseOptionalTlv(type, infoLen, info, remoteSystem, portStatus, parseContext);
      TRACE(codecTrace, 8, "Parsed TLV: result=" << static_cast<int>(result));
      switch (result) {
         case TlvParseResultEnd:
            return true;
         case TlvParseResultOk:
            break;
         case TlvParseResultUnrecognized:
            portStatus->rxTLVsUnrecognizedTotalInc(1);
            break;
         case TlvParseResultError:
            portStatus->rxTLVsDiscardedTotalInc(1);
            *frameError = true;
            break;
         default:
            REX_ASSERT(result == TlvParseResultFatalError);
            return false;
      }
   }
   return true;
}

TlvParseResult parseSystemCapabilitiesTlv(int infoLen, const char* info,
                                          const RemoteSystem::Ptr& remoteSystem) {
   if (infoLen < 4) {
      TRACE(codecTrace, 0,
            "Error: System Capabilities TLV is too short (infoLen=" << infoLen << ")");
      return TlvParseResultFatalError;
   }
   uint16_t supported = get16(info);
   uint16_t enabled = get16(info + 2);
   if (enabled & ~supported) {
      TRACE(codecTrace, 0,
            "Error: Supported and enabled capabilities are inconsistent "
                << "(supported=0x" << Rex::Hex{supported} << ", enabled=0x" << Rex::Hex{enabled}
                << ")");
      return TlvParseResultError;
   }
   TRACE(codecTrace, 6,
         "System Capabilities: "
             << "supported=0x" << Rex::Hex{supported} << ", enabled=0x" << Rex::Hex{enabled});
   remoteSystem->systemCapabilitiesIs(SystemCapabilitiesTlv::create(supported, enabled));
   return TlvParseResultOk;
}

TlvParseResult parseManagementAddressTlv(int infoLen, const char* info,
                                         const RemoteSystem::Ptr& remoteSystem) {
   // The shortest one: no address and no object identifier, but every other field.
   if (infoLen < 9) {
      TRACE(codecTrace, 0,
            "Error: Management Address TLV is too short (infoLen=" << infoLen << ")");
      return TlvParseResultFatalError;
   }
   int manAddrStringLen = get8(info);
   if (manAddrStringLen < 2 || manAddrStringLen > 32) {
      TRACE(codecTrace, 0,
            "Error: Value of management address string length field is out of range "
            "(manAddrStringLen="
                << manAddrStringLen << ")");
      return TlvParseResultError;
   }
   if (infoLen < manAddrStringLen + 7) {
      TRACE(codecTrace, 0,
            "Error: Management Address TLV is too short (infoLen="
                << infoLen << ", manAddrStringLen=" << manAddrStringLen << ")");
      return TlvParseResultFatalError;
   }
   ManagementAddress address;
   address.key.manAddrSubtype = get8(info + 1);
   address.key.manAddr = ManAddress(info + 2, static_cast<size_t>(manAddrStringLen - 1));
   const char* behind = info + 1 + manAddrStringLen;
   address.ifSubtype = get8(behind);
   address.ifNumber = get32(behind + 1);
   int oidStringLen = get8(behind + 5);
   // Tested before the room for it: such a TLV is bad by itself, not a sign of a broken frame.
   if (oidStringLen > 128) {
      TRACE(codecTrace, 0,
            "Error: Value of OID string length field is out of range (oidStringLen=" << oidStringLen
                                                                                     << ")");
      return TlvParseResultError;
   }
   if (infoLen < manAddrStringLen + 7 + oidStringLen) {
      TRACE(codecTrace, 0,
            "Error: Management Address TLV is too short (infoLen="
                << infoLen << ", manAddrStringLen=" << manAddrStringLen
                << ", oidStringLen=" << oidStringLen << ")");
      return TlvParseResultFatalError;
   }
   if (oidStringLen) {
      address.oid = decodeOid(Rex::String(behind + 6, static_cast<size_t>(oidStringLen)));
   } else {
      TRACE(codecTrace, 8, "Empty OID string");
   }
   TRACE(codecTrace, 6, "Management Address: " << address);
   remoteSystem->managementAddressIs(address);
   return TlvParseResultOk;
}

TlvParseResult parseOrganizationallySpecificTlv(
    int infoLen, const char* info, const RemoteSystem::Ptr& remoteSystem,
    const PortStatus::Ptr& portStatus, const UnknownOrgDefTlvParseContext::Ptr& parseContext) {
   if (infoLen < orgDefHeaderLen) {
      TRACE(codecTrace, 0,
            "Error: Organizationally Specific TLV is too short (infoLen=" << infoLen << ")");
      return TlvParseResultFatalError;
   }
   Oui oui{get32(info) >> 8};
   uint32_t subtype = get8(info + 3);
   TRACE(codecTrace, 8, "Organizationally Specific TLV: oui=" << oui << ", subtype=" << subtype);
   if (subtype == 0) {
      TRACE(codecTrace, 0,
            "Error: Organizationally Specific TLV has invalid subtype of 0 (oui=" << oui << ")");
      return TlvParseResultError;
   }
   const char* orgDefInfo = info + orgDefHeaderLen;
   int orgDefInfoLen = infoLen - orgDefHeaderLen;
   TlvParseResult result = parseKnownOrganisation(oui, static_cast<int>(subtype), orgDefInfoLen,
                                                  orgDefInfo, remoteSystem, portStatus);
   if (result != TlvParseResultUnrecognized) return result;

   auto counter = parseContext->counterIs({oui, subtype});
   uint32_t index = counter->countInc(1);
   UnknownOrgDefTlv tlv{{oui, subtype, index},
                        BoundedString507(orgDefInfo, static_cast<size_t>(orgDefInfoLen))};
   TRACE(codecTrace, 6, "Unknown Organizationally Specific TLV: " << tlv);
   remoteSystem->unknownOrgDefTlvIs(tlv);
   return TlvParseResultUnrecognized;
}

}  // namespace Lldp::Agent
