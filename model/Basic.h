// Values of the basic TLVs (IEEE Std 802.1AB-2016, 8.5) and of TLVs that are kept unread.
#pragma once

#include <boost/describe.hpp>
#include <compare>
#include <cstdint>
#include <limits>

#include "Foreign/Snmp.h"
#include "Rex/Entity.h"
#include "model/BoundedStrings.h"

namespace Lldp {

namespace words {
struct SystemCapabilities {
   static constexpr const char* text = "SystemCapabilitiesMap::value > 65535 not allowed";
};
struct ManAddress {
   static constexpr const char* text = "ManAddress::value::bytes > 31 not allowed";
};
struct UnknownTlvType {
   static constexpr const char* text = "UnknownTlv::type < 9 or > 126 not allowed";
};
struct KeyIndex {
   static constexpr const char* text = "Key::index < 1 not allowed";
};
}  // namespace words

// Bit map in the layout of the System Capabilities TLV (8.5.8): 0x04 bridge, 0x10 router.
using SystemCapabilitiesMap = Rex::BoundedNumber<uint16_t, 0, 0xFFFF, words::SystemCapabilities>;

struct SystemCapabilitiesTlv {
   bool tlvReceived = false;
   SystemCapabilitiesMap supported;
   SystemCapabilitiesMap enabled;

   static SystemCapabilitiesTlv create(SystemCapabilitiesMap supported,
                                       SystemCapabilitiesMap enabled) {
      return {true, supported, enabled};
   }
   bool operator==(const SystemCapabilitiesTlv&) const = default;
};
BOOST_DESCRIBE_STRUCT(SystemCapabilitiesTlv, (), (tlvReceived, supported, enabled))

// Address octets of a management address, at most 31 (8.5.9.4).
using ManAddress = Rex::BoundedText<31, words::ManAddress>;

struct ManagementAddress {
   struct Key {
      uint8_t manAddrSubtype = 0;  // IANA address family number: 1 IPv4, 2 IPv6, 6 IEEE 802 MAC
      ManAddress manAddr;

      Rex::String stringValue() const;
      size_t hash() const { return Rex::hashOf(*this); }
      auto operator<=>(const Key&) const = default;
   };
   Key key;
   uint8_t ifSubtype = 1;  // 1 unknown, 2 interface index, 3 system port number (8.5.9.5)
   uint32_t ifNumber = 0;
   Snmp::ObjectIdentifier oid;

   // The wire's management address string length: the address and its subtype octet.
   int manAddrLen() const { return static_cast<int>(key.manAddr.bytes()) + 1; }
   bool operator==(const ManagementAddress&) const = default;
};
BOOST_DESCRIBE_STRUCT(ManagementAddress::Key, (), (manAddrSubtype, manAddr))
BOOST_DESCRIBE_STRUCT(ManagementAddress, (), (key, ifSubtype, ifNumber, oid))
inline const ManagementAddress nullManagementAddress;  // no address

// A TLV of a reserved type, kept as it came.
using UnknownTlvType = Rex::BoundedNumber<uint32_t, 9, 126, words::UnknownTlvType>;
struct UnknownTlv {
   UnknownTlvType type;
   BoundedString511 value;
   bool operator==(const UnknownTlv&) const = default;
};
BOOST_DESCRIBE_STRUCT(UnknownTlv, (), (type, value))

// 24-bit organisation identifier.
struct Oui {
   uint32_t value = 0;
   Rex::String stringValue() const { return Rex::format("%06x", value); }
   auto operator<=>(const Oui&) const = default;
};
BOOST_DESCRIBE_STRUCT(Oui, (), (value))

// An Organizationally Specific TLV that nobody here reads, or one that is sent for somebody else.
struct UnknownOrgDefTlv {
   using Index =
       Rex::BoundedNumber<uint32_t, 1, std::numeric_limits<uint32_t>::max(), words::KeyIndex>;
   struct Key {
      Oui oui;
      uint32_t subtype = 0;
      Index index;  // tells members of one organisation and subtype apart, from 1
      size_t hash() const { return Rex::hashOf(*this); }
      auto operator<=>(const Key&) const = default;
   };
   Key key;
   BoundedString507 orgDefInfo;
   bool operator==(const UnknownOrgDefTlv&) const = default;
};
BOOST_DESCRIBE_STRUCT(UnknownOrgDefTlv::Key, (), (oui, subtype, index))
BOOST_DESCRIBE_STRUCT(UnknownOrgDefTlv, (), (key, orgDefInfo))

// How many TLVs of one organisation and subtype a frame has brought so far.
struct UnknownOrgDefTlvCounter : Rex::Entity {
   struct Key {
      Oui oui;
      uint32_t subtype = 0;
      auto operator<=>(const Key&) const = default;
   };
   REX_ENTITY(UnknownOrgDefTlvCounter, Rex::Entity)
   REX_KEY(Key, key)
   REX_COUNTER(uint32_t, count)
   REX_ENTITY_END()
   explicit UnknownOrgDefTlvCounter(const Key& key) : key_(key) {}
};
BOOST_DESCRIBE_STRUCT(UnknownOrgDefTlvCounter::Key, (), (oui, subtype))

// Local to the parse of one frame.
struct UnknownOrgDefTlvParseContext : Rex::Entity {
   REX_ENTITY(UnknownOrgDefTlvParseContext, Rex::Entity)
   REX_CHILDREN(UnknownOrgDefTlvCounter, counter, UnknownOrgDefTlvCounter::Key)
   REX_ENTITY_END()
};

}  // namespace Lldp
