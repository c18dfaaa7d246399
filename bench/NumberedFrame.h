// Frames of many neighbours, made in place from one that stays in the cache, as a frame does that
// the device has just delivered.
#pragma once

#include <cstdint>
#include <string>

namespace Bench {

inline void write32(std::string& frame, size_t at, uint32_t value) {
   for (size_t i = 0; i < 4; ++i) frame[at + i] = static_cast<char>(value >> (24 - 8 * i));
}

// Puts a number into the address that is the chassis ID, behind the Ethernet header, the header of
// the TLV, its subtype, and the first two octets.
inline void chassisNumberIs(std::string& frame, uint32_t number) {
   write32(frame, 14 + 2 + 1 + 2, number);
}
// Puts a number into the last octets of the frame's source address.
inline void sourceNumberIs(std::string& frame, uint32_t number) {
   write32(frame, 6 + 2, number);
}

}  // namespace Bench
