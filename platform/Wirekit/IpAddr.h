// IPv4 and IPv6 addresses, alone and with the length of their network's prefix. Octets stand in
// the order of transmission.
#pragma once

#include <array>
#include <compare>
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "Rex/String.h"

namespace Wirekit {

class IpAddr {
 public:
   static constexpr std::size_t size = 4;

   constexpr IpAddr() = default;
   // From the number whose most significant octet is sent first: 192.0.2.1 is 0xC0000201.
   explicit constexpr IpAddr(uint32_t value)
       : octets_{uint8_t(value >> 24), uint8_t(value >> 16), uint8_t(value >> 8), uint8_t(value)} {}
   static IpAddr fromOctets(const void* octets);

   constexpr uint32_t value() const {
      return uint32_t(octets_[0]) << 24 | uint32_t(octets_[1]) << 16 | uint32_t(octets_[2]) << 8 |
             octets_[3];
   }
   const uint8_t* octets() const { return octets_.data(); }
   constexpr bool isZero() const { return *this == IpAddr(); }

   Rex::String stringValue() const;
   static bool fromText(std::string_view text, IpAddr& addr);
   static constexpr const char* textForm = "an IPv4 address such as 192.0.2.1";

   friend constexpr bool operator==(const IpAddr&, const IpAddr&) = default;
   friend constexpr std::strong_ordering operator<=>(const IpAddr&, const IpAddr&) = default;

 private:
   std::array<uint8_t, size> octets_{};
};
std::size_t hash_value(const IpAddr& addr) noexcept;

class Ip6Addr {
 public:
   static constexpr std::size_t size = 16;

   constexpr Ip6Addr() = default;
   explicit constexpr Ip6Addr(const std::array<uint8_t, size>& octets) : octets_(octets) {}
   static Ip6Addr fromOctets(const void* octets);

   const uint8_t* octets() const { return octets_.data(); }
   constexpr bool isZero() const { return *this == Ip6Addr(); }
   // fe80::/10 (RFC 4291, 2.5.6).
   constexpr bool isLinkLocal() const { return octets_[0] == 0xFE && (octets_[1] & 0xC0) == 0x80; }

   Rex::String stringValue() const;
   static bool fromText(std::string_view text, Ip6Addr& addr);
   static constexpr const char* textForm = "an IPv6 address such as 2001:db8::1";

   friend constexpr bool operator==(const Ip6Addr&, const Ip6Addr&) = default;
   friend constexpr std::strong_ordering operator<=>(const Ip6Addr&, const Ip6Addr&) = default;

 private:
   std::array<uint8_t, size> octets_{};
};
std::size_t hash_value(const Ip6Addr& addr) noexcept;

// An address and how many bits of it name the network.
template <class Addr>
class AddrWithMask {
 public:
   static constexpr uint8_t longest = Addr::size * 8;

   constexpr AddrWithMask() = default;
   // `maskLength` above the address's width is cut to it.
   constexpr AddrWithMask(const Addr& addr, uint8_t maskLength)
       : addr_(addr), maskLength_(maskLength < longest ? maskLength : longest) {}

   constexpr const Addr& addr() const { return addr_; }
   constexpr uint8_t maskLength() const { return maskLength_; }

   // 192.0.2.1/24
   Rex::String stringValue() const;
   // Takes that form, and the address alone with a mask length of 0.
   static bool fromText(std::string_view text, AddrWithMask& addr);
   static constexpr const char* textForm =
       Addr::size == 4 ? "an IPv4 address with mask length such as 192.0.2.1/24"
                       : "an IPv6 address with prefix length such as 2001:db8::1/64";

   friend constexpr bool operator==(const AddrWithMask&, const AddrWithMask&) = default;
   friend constexpr auto operator<=>(const AddrWithMask&, const AddrWithMask&) = default;
   friend std::size_t hash_value(const AddrWithMask& addr) noexcept {
      return hash_value(addr.addr_) * 257 + addr.maskLength_;
   }

 private:
   Addr addr_;
   uint8_t maskLength_ = 0;
};
extern template class AddrWithMask<IpAddr>;
extern template class AddrWithMask<Ip6Addr>;

using IpAddrWithMask = AddrWithMask<IpAddr>;
using Ip6AddrWithMask = AddrWithMask<Ip6Addr>;

}  // namespace Wirekit
