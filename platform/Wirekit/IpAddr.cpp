#include "Wirekit/IpAddr.h"

#include <arpa/inet.h>

#include <charconv>
#include <cstring>
#include <string>

namespace Wirekit {
namespace {

Rex::String toText(int family, const void* octets) {
   char text[INET6_ADDRSTRLEN];
   return Rex::String(inet_ntop(family, octets, text, sizeof(text)));
}

bool toOctets(int family, std::string_view text, void* octets) {
   return inet_pton(family, std::string(text).c_str(), octets) == 1 &&
          text.find('\0') == std::string_view::npos;
}

std::size_t hashOctets(const uint8_t* octets, std::size_t size) noexcept {
   return std::hash<std::string_view>()({reinterpret_cast<const char*>(octets), size});
}

}  // namespace

IpAddr IpAddr::fromOctets(const void* octets) {
   IpAddr made;
   std::memcpy(made.octets_.data(), octets, size);
   return made;
}
Rex::String IpAddr::stringValue() const {
   return toText(AF_INET, octets());
}
bool IpAddr::fromText(std::string_view text, IpAddr& addr) {
   std::array<uint8_t, size> octets;
   if (!toOctets(AF_INET, text, octets.data())) return false;
   addr = fromOctets(octets.data());
   return true;
}
std::size_t hash_value(const IpAddr& addr) noexcept {
   return hashOctets(addr.octets(), IpAddr::size);
}

Ip6Addr Ip6Addr::fromOctets(const void* octets) {
   Ip6Addr made;
   std::memcpy(made.octets_.data(), octets, size);
   return made;
}
Rex::String Ip6Addr::stringValue() const {
   return toText(AF_INET6, octets());
}
bool Ip6Addr::fromText(std::string_view text, Ip6Addr& addr) {
   std::array<uint8_t, size> octets;
   if (!toOctets(AF_INET6, text, octets.data())) return false;
   addr = Ip6Addr(octets);
   return true;
}
std::size_t hash_value(const Ip6Addr& addr) noexcept {
   return hashOctets(addr.octets(), Ip6Addr::size);
}

template <class Addr>
Rex::String AddrWithMask<Addr>::stringValue() const {
   return Rex::String(addr_.stringValue().stdString() + "/" + std::to_string(maskLength_));
}

template <class Addr>
bool AddrWithMask<Addr>::fromText(std::string_view text, AddrWithMask& addr) {
   std::size_t slash = text.find('/');
   AddrWithMask made;
   if (!Addr::fromText(text.substr(0, slash), made.addr_)) return false;
   if (slash != std::string_view::npos) {
      const char* end = text.data() + text.size();
      auto [at, error] = std::from_chars(text.data() + slash + 1, end, made.maskLength_);
      if (error != std::errc() || at != end || made.maskLength_ > longest) return false;
   }
   addr = made;
   return true;
}

template class AddrWithMask<IpAddr>;
template class AddrWithMask<Ip6Addr>;

}  // namespace Wirekit
