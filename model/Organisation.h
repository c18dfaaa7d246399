// Values of the organisations' TLVs: IEEE 802.1 (IEEE Std 802.1Q, Annex D), IEEE 802.3 (IEEE Std
// 802.3, Clause 79) and LLDP-MED (ANSI/TIA-1057); locations stand in model/LocationId.h.
#pragma once

#include <boost/describe.hpp>
#include <compare>
#include <cstdint>
#include <limits>

#include "Foreign/Vlan.h"
#include "model/BoundedStrings.h"

namespace Lldp {

namespace words {
struct ProtocolIdentityIndex {
   static constexpr const char* text = "ProtocolIdentityInfo::index < 1 not allowed";
};
struct LinkAggStatus {
   static constexpr const char* text = "LinkAggStatusMap::value > 255 not allowed";
};
}  // namespace words

struct PortAndProtocolVlan {
   Bridging::VlanIdOrNone ppvid;
   bool supported = false;
   bool enabled = false;
   bool operator==(const PortAndProtocolVlan&) const = default;
};
BOOST_DESCRIBE_STRUCT(PortAndProtocolVlan, (), (ppvid, supported, enabled))

struct VlanName {
   Bridging::VlanId vlanId;
   BoundedString32 vlanName;
   bool operator==(const VlanName&) const = default;
};
BOOST_DESCRIBE_STRUCT(VlanName, (), (vlanId, vlanName))

struct ProtocolIdentityInfo {
   using Index =
       Rex::BoundedNumber<int, 1, std::numeric_limits<int>::max(), words::ProtocolIdentityIndex>;
   Index index;
   BoundedString255 protocolIdentity;
   bool operator==(const ProtocolIdentityInfo&) const = default;
};
BOOST_DESCRIBE_STRUCT(ProtocolIdentityInfo, (), (index, protocolIdentity))

// Aggregation status in the layout of the Link Aggregation TLV: 0x01 capable, 0x02 enabled.
class LinkAggStatusMap : public Rex::BoundedNumber<uint8_t, 0, 0xFF, words::LinkAggStatus> {
 public:
   using BoundedNumber::BoundedNumber;
   bool aggCapable() const { return value() & 0x01; }
   bool aggEnabled() const { return value() & 0x02; }
   void aggCapableIs(bool on) { bitIs(0x01, on); }
   void aggEnabledIs(bool on) { bitIs(0x02, on); }

 private:
   void bitIs(uint8_t bit, bool on) {
      *this = LinkAggStatusMap(static_cast<uint8_t>(on ? value() | bit : value() & ~bit));
   }
};

struct LinkAggregationInfo {
   LinkAggStatusMap status;
   uint32_t portId = 0;
   bool operator==(const LinkAggregationInfo&) const = default;
};
BOOST_DESCRIBE_STRUCT(LinkAggregationInfo, (), (status, portId))

struct MaximumFrameSizeInfo {
   uint16_t maxFrameSize = 0;  // octets
   bool operator==(const MaximumFrameSizeInfo&) const = default;
};
BOOST_DESCRIBE_STRUCT(MaximumFrameSizeInfo, (), (maxFrameSize))

struct MacPhyConfigStatusInfo {
   bool autoNegSupported = false;
   bool autoNegEnabled = false;
   uint16_t advertisedCapability = 0;
   uint16_t operMauType = 0;
   bool operator==(const MacPhyConfigStatusInfo&) const = default;
};
BOOST_DESCRIBE_STRUCT(MacPhyConfigStatusInfo, (),
                      (autoNegSupported, autoNegEnabled, advertisedCapability, operMauType))

// Power via MDI (79.3.2); powers in tenths of a watt.
struct PowerViaMdiInfo {
   uint32_t tlvFormat = 0;       // 0 the short form, 1 with type, source, priority and powers
   uint32_t powerType = 0;       // 0 type 2 PSE, 1 type 2 PD, 2 type 1 PSE, 3 type 1 PD
   uint8_t mdiPowerSupport = 0;  // 0x01 PSE, 0x02 supported, 0x04 enabled, 0x08 pairs control
   uint8_t psePowerPair = 0;     // 1 signal, 2 spare
   uint8_t powerClass = 0;       // the class plus 1
   uint8_t powerSource = 0;      // PSE: 1 primary, 2 backup; PD: 1 PSE, 2 local, 3 both
   uint8_t powerPriority = 0;    // 1 critical, 2 high, 3 low
   uint16_t pdRequestedPower = 0;
   uint16_t pseAllocatedPower = 0;
   bool operator==(const PowerViaMdiInfo&) const = default;
};
BOOST_DESCRIBE_STRUCT(PowerViaMdiInfo, (),
                      (tlvFormat, powerType, mdiPowerSupport, psePowerPair, powerClass, powerSource,
                       powerPriority, pdRequestedPower, pseAllocatedPower))

struct MedCapabilitiesInfo {
   // 6-bit map: bit 0 LLDP-MED Capabilities, 1 Network Policy, 2 Location Identification,
   // 3 Extended Power via MDI PSE, 4 Extended Power via MDI PD, 5 Inventory.
   using Capability = uint16_t;
   Capability capabilities = 0;
   uint8_t mediaEndpointDeviceType = 0;  // 0 to 5; 4 is a network connectivity device
   bool operator==(const MedCapabilitiesInfo&) const = default;
};
BOOST_DESCRIBE_STRUCT(MedCapabilitiesInfo, (), (capabilities, mediaEndpointDeviceType))

struct NetworkPolicyTlv {
   uint8_t appType = 0;
   bool unknown = false;
   bool tagged = false;
   uint16_t vlanId = 0;
   uint8_t l2Priority = 0;
   uint8_t dscp = 0;
   bool operator==(const NetworkPolicyTlv&) const = default;
};
BOOST_DESCRIBE_STRUCT(NetworkPolicyTlv, (), (appType, unknown, tagged, vlanId, l2Priority, dscp))

}  // namespace Lldp
