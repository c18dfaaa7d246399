// A MAC address: six octets in the order of transmission.
#pragma once

#include <array>
#include <compare>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <functional>
#include <iosfwd>
#include <string_view>

#include "Rex/String.h"

namespace Wirekit {

class EthAddr {
 public:
   static constexpr std::size_t size = 6;

   constexpr EthAddr() = default;
   constexpr EthAddr(uint8_t a, uint8_t b, uint8_t c, uint8_t d, uint8_t e, uint8_t f)
       : octets_{a, b, c, d, e, f} {}
   // From six octets anywhere in memory.
   static EthAddr fromOctets(const void* octets) {
      EthAddr made;
      std::memcpy(made.octets_.data(), octets, size);
      return made;
   }

   constexpr uint8_t byte(std::size_t i) const { return octets_[i]; }
   const uint8_t* octets() const { return octets_.data(); }
   constexpr bool isZero() const { return *this == EthAddr(); }

   // aa:bb:cc:dd:ee:ff
   Rex::String stringValue() const;
   // Takes that form, the one with hyphens and aabb.ccdd.eeff, in either case. False, and `addr` as
   // it was, for anything else.
   static bool fromText(std::string_view text, EthAddr& addr);
   static constexpr const char* textForm = "a MAC address such as 02:00:00:01:02:03";

   friend constexpr bool operator==(const EthAddr&, const EthAddr&) = default;
   friend constexpr std::strong_ordering operator<=>(const EthAddr&, const EthAddr&) = default;

 private:
   std::array<uint8_t, size> octets_{};
};

std::ostream& operator<<(std::ostream& out, const EthAddr& addr);
std::size_t hash_value(const EthAddr& addr) noexcept;

}  // namespace Wirekit

template <>
struct std::hash<Wirekit::EthAddr> {
   std::size_t operator()(const Wirekit::EthAddr& addr) const noexcept { return hash_value(addr); }
};
