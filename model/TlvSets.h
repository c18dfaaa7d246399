// Which TLVs a port sends, one set for each group.
#pragma once

#include <boost/describe.hpp>
#include <cstdint>

namespace Lldp {

// A 32-bit set with a name for each member in use.
#define LLDP_TLV_SET_MEMBER(name, nameIs, bit)          \
   constexpr bool name() const {                        \
      return bits & (bit);                              \
   }                                                    \
   constexpr void nameIs(bool on) {                     \
      bits = on ? bits | (bit) : bits & ~uint32_t(bit); \
   }

struct EnabledTlvs {
   uint32_t bits = 0;
   LLDP_TLV_SET_MEMBER(portDescription, portDescriptionIs, 0x01)
   LLDP_TLV_SET_MEMBER(systemName, systemNameIs, 0x02)
   LLDP_TLV_SET_MEMBER(systemDescription, systemDescriptionIs, 0x04)
   LLDP_TLV_SET_MEMBER(systemCapabilities, systemCapabilitiesIs, 0x08)
   bool operator==(const EnabledTlvs&) const = default;
};
BOOST_DESCRIBE_STRUCT(EnabledTlvs, (), (bits))

struct Dot3EnabledTlvs {
   uint32_t bits = 0;
   LLDP_TLV_SET_MEMBER(macPhyConfigStatus, macPhyConfigStatusIs, 0x01)
   LLDP_TLV_SET_MEMBER(powerViaMdi, powerViaMdiIs, 0x02)
   LLDP_TLV_SET_MEMBER(linkAggregation, linkAggregationIs, 0x04)
   LLDP_TLV_SET_MEMBER(maximumFrameSize, maximumFrameSizeIs, 0x08)
   bool operator==(const Dot3EnabledTlvs&) const = default;
};
BOOST_DESCRIBE_STRUCT(Dot3EnabledTlvs, (), (bits))

struct TiaEnabledTlvs {
   uint32_t bits = 0;
   LLDP_TLV_SET_MEMBER(networkPolicy, networkPolicyIs, 0x02)
   bool operator==(const TiaEnabledTlvs&) const = default;
};
BOOST_DESCRIBE_STRUCT(TiaEnabledTlvs, (), (bits))

#undef LLDP_TLV_SET_MEMBER

}  // namespace Lldp
