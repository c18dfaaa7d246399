// LLDPDUs for tests and benchmarks, made octet by octet and without the codec's own help.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace LldpTest {

inline std::string be8(unsigned value) {
   return std::string(1, static_cast<char>(value));
}
inline std::string be16(unsigned value) {
   return be8(value >> 8) + be8(value);
}
inline std::string be32(uint32_t value) {
   return be16(value >> 16) + be16(value);
}

// The octets of hexadecimal pairs.
inline std::string octets(std::string_view hex) {
   std::string made;
   for (size_t at = 0; at + 1 < hex.size(); at += 2) {
      made += be8(static_cast<unsigned>(std::stoul(std::string(hex.substr(at, 2)), nullptr, 16)));
   }
   return made;
}

// A TLV whose header tells `length`, whatever follows.
inline std::string tlvOfLength(unsigned type, unsigned length, std::string_view info) {
   return be16(type << 9 | length) + std::string(info);
}
inline std::string tlv(unsigned type, std::string_view info) {
   return tlvOfLength(type, static_cast<unsigned>(info.size()), info);
}

inline std::string chassisId(unsigned subtype, std::string_view value) {
   return tlv(1, be8(subtype) + std::string(value));
}
inline std::string portId(unsigned subtype, std::string_view value) {
   return tlv(2, be8(subtype) + std::string(value));
}
inline std::string timeToLive(unsigned ttl) {
   return tlv(3, be16(ttl));
}
// The three mandatory TLVs of neighbour number `n`, each by its own MAC address.
inline std::string mandatory(uint32_t n = 1, unsigned ttl = 120) {
   return chassisId(4, be16(0x0200) + be32(n)) + portId(5, "Ethernet1") + timeToLive(ttl);
}
inline std::string endOfLldpdu() {
   return tlv(0, "");
}

inline std::string systemCapabilities(unsigned supported, unsigned enabled) {
   return tlv(7, be16(supported) + be16(enabled));
}
inline std::string managementAddress(unsigned subtype, std::string_view address, uint32_t ifNumber,
                                     std::string_view oid = "") {
   return tlv(8, be8(static_cast<unsigned>(address.size()) + 1) + be8(subtype) +
                     std::string(address) + be8(2) + be32(ifNumber) +
                     be8(static_cast<unsigned>(oid.size())) + std::string(oid));
}
constexpr uint32_t dot1 = 0x0080C2;
constexpr uint32_t dot3 = 0x00120F;
constexpr uint32_t tia = 0x0012BB;
constexpr uint32_t cee = 0x001B21;

inline std::string organization(uint32_t oui, unsigned subtype, std::string_view info) {
   return tlv(127, be32(oui << 8 | subtype) + std::string(info));
}

// What a switch usually sends, 250 octets: neighbour number `n`.
inline std::string typicalLldpdu(uint32_t n = 1, std::string_view name = "switch-a.example.net") {
   return mandatory(n) + tlv(4, "Uplink to the distribution layer, row 7") + tlv(5, name) +
          tlv(6,
              "A network operating system, version 4.30.1F, on a 48-port switch of its own kind, "
              "Revision B01, 2026") +
          systemCapabilities(0x14, 0x14) + managementAddress(1, be32(0x0A000001), 999001) +
          organization(dot1, 1, be16(100)) +
          organization(dot3, 1, be8(3) + be16(0x6C01) + be16(30)) +
          organization(dot3, 3, be8(1) + be32(0)) + organization(dot3, 4, be16(9236)) +
          endOfLldpdu();
}

}  // namespace LldpTest
