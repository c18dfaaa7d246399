#include "Lldp/LldpProtocol/Oid.h"

// The second one needs the first.
// clang-format off
#include <net-snmp/net-snmp-config.h>
#include <net-snmp/library/asn1.h>
// clang-format on

#include <array>
#include <cstdio>

#include "Lldp/LldpProtocol/Trace.h"

namespace Lldp::Agent {
namespace {

// The longest one: 128 octets, of which the first stands for two arcs.
constexpr size_t maxSubIds = 129;
// A sub-identifier of 64 bits, and its dot.
constexpr size_t maxSubIdText = 21;

}  // namespace

Snmp::ObjectIdentifier decodeOid(const Rex::String& oidBytes) {
   // The long form of the length serves for every length.
   Rex::String ber =
       Rex::format("%c%c%c", 0x06, 0x81, static_cast<int>(oidBytes.bytes())) + oidBytes;
   size_t datalength = ber.bytes();
   u_char type = 0;
   std::array<oid, maxSubIds> subIds;
   size_t subIdCount = subIds.size();
   // The parser takes its input as writable, but only reads it. What it has to say of a bad one it
   // keeps in a buffer of its library.
   auto* data = reinterpret_cast<u_char*>(const_cast<char*>(ber.charPtr()));
   if (!asn_parse_objid(data, &datalength, &type, subIds.data(), &subIdCount)) {
      TRACE(codecTrace, 0, "Invalid OID string");
      return {};
   }
   REX_ASSERT(type == ((u_char)0x06));
   if (datalength) {
      TRACE(codecTrace, 0, "Excess bytes at end of OID string");
      return {};
   }
   TRACE(codecTrace, 8, "Valid OID string");
   std::array<char, maxSubIds * maxSubIdText + 1> text;
   size_t length = 0;
   for (size_t i = 0; i < subIdCount; ++i) {
      if (i) text[length++] = '.';
      int printed = std::snprintf(text.data() + length, text.size() - length, "%lu", subIds[i]);
      length += static_cast<size_t>(printed);
   }
   return {Rex::String(text.data(), length)};
}

Rex::String encodeOid(const Snmp::ObjectIdentifier& oid) {
   REX_ASSERT(!oid);
   return {};
}

}  // namespace Lldp::Agent
