// Numbers in network byte order, at any place in a frame.
#pragma once

#include <cstdint>

namespace Lldp::Agent {

constexpr uint8_t get8(const char* at) {
   return static_cast<uint8_t>(*at);
}
constexpr uint16_t get16(const char* at) {
   return static_cast<uint16_t>(get8(at) << 8 | get8(at + 1));
}
constexpr uint32_t get32(const char* at) {
   return uint32_t{get16(at)} << 16 | get16(at + 2);
}

constexpr void put16(char* at, uint16_t value) {
   at[0] = static_cast<char>(value >> 8);
   at[1] = static_cast<char>(value);
}
constexpr void put32(char* at, uint32_t value) {
   put16(at, static_cast<uint16_t>(value >> 16));
   put16(at + 2, static_cast<uint16_t>(value));
}

}  // namespace Lldp::Agent
