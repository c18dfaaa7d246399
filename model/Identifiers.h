// Chassis and port identifiers (IEEE Std 802.1AB-2016, 8.5.2 and 8.5.3).
#pragma once

#include <boost/describe.hpp>
#include <compare>
#include <cstdint>

#include "Rex/Value.h"

namespace Lldp {

// What stands between the octets of a MAC address in a display text.
enum class MacSeparator { none = 0, colon = 1, dash = 2 };
BOOST_DESCRIBE_ENUM(MacSeparator, none, colon, dash)

// IEEE Std 802.1AB-2016, table 8-2. 8 stands for every subtype above 7; 0 is kept as it came.
enum class ChassisIdSubtype : uint8_t {
   chassisComponent = 1,
   interfaceAlias = 2,
   portComponent = 3,
   macAddress = 4,
   networkAddress = 5,
   interfaceName = 6,
   local = 7,
   unknown = 8,
};
BOOST_DESCRIBE_ENUM(ChassisIdSubtype, chassisComponent, interfaceAlias, portComponent, macAddress,
                    networkAddress, interfaceName, local, unknown)

// IEEE Std 802.1AB-2016, table 8-3, likewise.
enum class PortIdSubtype : uint8_t {
   interfaceAlias = 1,
   portComponent = 2,
   macAddress = 3,
   networkAddress = 4,
   interfaceName = 5,
   agentCircuitId = 6,
   local = 7,
   unknown = 8,
};
BOOST_DESCRIBE_ENUM(PortIdSubtype, interfaceAlias, portComponent, macAddress, networkAddress,
                    interfaceName, agentCircuitId, local, unknown)

namespace words {
struct ChassisId {
   static constexpr const char* text = "ChassisId::value::bytes > 255 not allowed";
};
struct PortId {
   static constexpr const char* text = "PortId::value::bytes > 255 not allowed";
};
}  // namespace words

// Opaque octets of an identifier, at most 255.
using ChassisId = Rex::BoundedText<255, words::ChassisId>;
using PortId = Rex::BoundedText<255, words::PortId>;

struct ChassisIdentifier {
   ChassisIdSubtype subtype{};
   ChassisId value;

   // The display text: a MAC address with the separator, a network address in its usual form, all
   // else as text made harmless. With `plain` false the subtype's name stands in front.
   Rex::String stringValue(MacSeparator separator, bool plain) const;
   Rex::String stringValue() const { return stringValue(MacSeparator::colon, true); }
   auto operator<=>(const ChassisIdentifier&) const = default;
};
BOOST_DESCRIBE_STRUCT(ChassisIdentifier, (), (subtype, value))

struct PortIdentifier {
   PortIdSubtype subtype{};
   PortId value;

   Rex::String stringValue(MacSeparator separator, bool plain) const;
   Rex::String stringValue() const { return stringValue(MacSeparator::colon, true); }
   auto operator<=>(const PortIdentifier&) const = default;
};
BOOST_DESCRIBE_STRUCT(PortIdentifier, (), (subtype, value))

// Octets as hexadecimal pairs with a separator.
Rex::String macText(std::string_view octets, MacSeparator separator);
// An address by its IANA family number (1 IPv4, 2 IPv6, 6 MAC), as text; hexadecimal when the
// family is another or the length is wrong.
Rex::String addressText(unsigned family, std::string_view octets);

}  // namespace Lldp
