#include "Lldp/LldpProtocol/Tlv.h"

#include <cstring>

#include "Lldp/LldpProtocol/Trace.h"

namespace Lldp::Agent {
namespace {

constexpr int headerLen = 2;
constexpr int minMandatoryInfoLen = 2;

}  // namespace

char* infoBuf = nullptr;

bool putTlv(char** cursor, char* end, int type, int infoLen, const char* info) {
   if (end - *cursor < infoLen + headerLen) {
      TRACE(codecTrace, 2,
            "No room for TLV (type=" << type << ", infoLen=" << infoLen << "); remaining space "
                                     << end - *cursor << " bytes");
      return false;
   }
   REX_ASSERT(!(infoLen & ~0x1ff));
   put16(*cursor, static_cast<uint16_t>(type << 9 | infoLen));
   std::memcpy(*cursor + headerLen, info, static_cast<size_t>(infoLen));
   *cursor += headerLen + infoLen;
   TRACE(codecTrace, 8,
         "Added TLV (type=" << type << ", infoLen=" << infoLen << "); remaining space "
                            << end - *cursor << " bytes");
   return true;
}

bool putOrgDefTlv(char** cursor, char* end, Oui oui, int subtype, int infoLen, const char* info) {
   info -= orgDefHeaderLen;
   REX_ASSERT(info == infoBuf);
   put32(infoBuf, oui.value << 8 | static_cast<uint8_t>(subtype));
   return putTlv(cursor, end, tlvOrganizationallySpecific, infoLen + orgDefHeaderLen, info);
}

bool extractTlv(const char** cursor, const char* end, int* type, int* infoLen, const char** info) {
   if (end - *cursor < headerLen) {
      TRACE(codecTrace, 0, "Error: frame ended during (or before) TLV header");
      return false;
   }
   *type = get8(*cursor) >> 1;
   *infoLen = get16(*cursor) & 0x1ff;
   TRACE(codecTrace, 8, "TLV: type=" << *type << ", infoLen=" << *infoLen);
   *info = *cursor + headerLen;
   *cursor += headerLen + *infoLen;
   if (*cursor > end) {
      TRACE(codecTrace, 0,
            "Error: frame ended during TLV information string (type=" << *type << ", infoLen="
                                                                      << *infoLen << ")");
      return false;
   }
   return true;
}

bool extractMandatoryTlv(const char** cursor, const char* end, int expectedType, int maxInfoLen,
                         int* infoLen, const char** info) {
   int type = 0;
   if (!extractTlv(cursor, end, &type, infoLen, info)) {
      TRACE(codecTrace, 0, "Error: frame ended during mandatory TLV");
      return false;
   }
   if (type != expectedType) {
      TRACE(codecTrace, 0, "Error: TLV was not of the expected type (type=" << type << ")");
      return false;
   }
   if (*infoLen > maxInfoLen || *infoLen < minMandatoryInfoLen) {
      TRACE(codecTrace, 0, "Error: size of TLV out of range (infoLen=" << *infoLen << ")");
      return false;
   }
   return true;
}

}  // namespace Lldp::Agent
