// What an LLDP frame looks like in front of its LLDPDU (IEEE Std 802.1AB-2016, 7.1 and 7.2), and
// the socket filter that knows it.
#pragma once

#include <cstddef>
#include <cstdint>

#include "Wirekit/EthAddr.h"
#include "Wirekit/SockFilterProgram.h"

namespace Lldp::Agent::Protocol {

// The nearest-bridge group address.
constexpr Wirekit::EthAddr lldpMulticastAddr(0x01, 0x80, 0xC2, 0x00, 0x00, 0x0E);
constexpr uint16_t lldpEtherType = 0x88CC;
// Octets of LLDPDU in a full frame: 1518 less the check sequence and the Ethernet header.
constexpr size_t maxLldpduSize = 1500;

// Passes frames to the group address with the LLDP EtherType, plain or behind one 802.1Q tag.
Wirekit::SockFilterProgram filterProgram();

}  // namespace Lldp::Agent::Protocol
