// The filter that passes LLDP frames, and frames to try it on. Shared by the tests of whatever runs
// filters.
#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "Wirekit/SockFilterProgram.h"

namespace LldpFilter {

inline constexpr Wirekit::SockFilterInstruction instructions[] = {
    {0x20, 0, 0, 0x2},                            // destination's last four octets
    {0x15, 0, 8, 0xC200000E}, {0x28, 0, 0, 0x0},  // and its first two
    {0x15, 0, 6, 0x180},      {0x28, 0, 0, 0xC},  // EtherType
    {0x15, 3, 0, 0x88CC},     {0x15, 0, 3, 0x8100}, {0x28, 0, 0, 0x10},  // EtherType behind the tag
    {0x15, 0, 1, 0x88CC},     {0x06, 0, 0, 0xFFFF}, {0x06, 0, 0, 0x0},
};
inline Wirekit::SockFilterProgram program() {
   return {static_cast<uint16_t>(std::size(instructions)), instructions};
}

using Octets = std::vector<uint8_t>;

// A frame of `size` octets whose last octet is `mark`.
inline Octets frame(uint16_t etherType = 0x88CC, std::optional<uint16_t> vlan = {},
                    size_t size = 60, uint8_t mark = 0) {
   Octets octets{0x01, 0x80, 0xC2, 0, 0, 0x0E, 2, 0, 0, 0, 0, 1};
   if (vlan) {
      octets.insert(octets.end(),
                    {0x81, 0x00, static_cast<uint8_t>(*vlan >> 8), static_cast<uint8_t>(*vlan)});
   }
   octets.insert(octets.end(),
                 {static_cast<uint8_t>(etherType >> 8), static_cast<uint8_t>(etherType)});
   if (octets.size() < size) octets.resize(size);
   octets.back() = octets.size() > 18 ? mark : octets.back();
   return octets;
}

}  // namespace LldpFilter
