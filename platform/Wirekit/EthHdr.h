// The Ethernet header as it stands in a frame (IEEE 802.3, 3.1.1), and the tag that may follow its
// addresses (IEEE 802.1Q, 9.3). Numbers in network order.
#pragma once

#include <arpa/inet.h>

#include <cstdint>
#include <cstring>

#include "Wirekit/EthAddr.h"

namespace Wirekit {

constexpr uint16_t dot1QTpid = 0x8100;
constexpr uint16_t vlanIdMask = 0x0FFF;

struct [[gnu::packed]] EthHdr {
   uint8_t dst[EthAddr::size];
   uint8_t src[EthAddr::size];
   uint16_t type;  // network order

   EthAddr dstAddr() const { return EthAddr::fromOctets(dst); }
   EthAddr srcAddr() const { return EthAddr::fromOctets(src); }
   uint16_t etherType() const { return ntohs(type); }
   void dstAddrIs(const EthAddr& addr) { std::memcpy(dst, addr.octets(), sizeof dst); }
   void srcAddrIs(const EthAddr& addr) { std::memcpy(src, addr.octets(), sizeof src); }
   void etherTypeIs(uint16_t etherType) { type = htons(etherType); }
};
static_assert(sizeof(EthHdr) == 14);

// An 802.1Q tag: protocol identifier, and priority and VLAN number. In host order.
struct VlanTag {
   uint16_t tpid = dot1QTpid;
   uint16_t tci = 0;
   static constexpr unsigned wireSize = 4;

   uint16_t vlanId() const { return tci & vlanIdMask; }
   bool operator==(const VlanTag&) const = default;
};

}  // namespace Wirekit
