#include "model/Identifiers.h"

#include <arpa/inet.h>
#include <fmt/format.h>

#include <array>

namespace Lldp {
namespace {

constexpr std::size_t macOctets = 6;

Rex::String networkAddressText(std::string_view octets) {
   if (octets.empty()) return {};
   return addressText(static_cast<unsigned char>(octets[0]), octets.substr(1));
}

template <class Subtype>
Rex::String named(Subtype subtype, const Rex::String& text, bool plain) {
   if (plain) return text;
   return Rex::valueToString(subtype) + Rex::String(" ") + text;
}

}  // namespace

Rex::String macText(std::string_view octets, MacSeparator separator) {
   const char* between = separator == MacSeparator::colon  ? ":"
                         : separator == MacSeparator::dash ? "-"
                                                           : "";
   std::string text;
   for (unsigned char octet : octets) {
      if (!text.empty()) text += between;
      text += fmt::format("{:02x}", octet);
   }
   return Rex::String(text);
}

Rex::String addressText(unsigned family, std::string_view octets) {
   std::array<char, INET6_ADDRSTRLEN> text{};
   if (family == 1 && octets.size() == 4) {
      return Rex::String(inet_ntop(AF_INET, octets.data(), text.data(), text.size()));
   }
   if (family == 2 && octets.size() == 16) {
      return Rex::String(inet_ntop(AF_INET6, octets.data(), text.data(), text.size()));
   }
   return macText(octets, family == 6 ? MacSeparator::colon : MacSeparator::none);
}

Rex::String ChassisIdentifier::stringValue(MacSeparator separator, bool plain) const {
   Rex::String text = value.stringValue();
   if (subtype == ChassisIdSubtype::macAddress && value.bytes() == macOctets) {
      text = macText(value.view(), separator);
   } else if (subtype == ChassisIdSubtype::networkAddress) {
      text = networkAddressText(value.view());
   }
   return named(subtype, text, plain);
}

Rex::String PortIdentifier::stringValue(MacSeparator separator, bool plain) const {
   Rex::String text = value.stringValue();
   if (subtype == PortIdSubtype::macAddress && value.bytes() == macOctets) {
      text = macText(value.view(), separator);
   } else if (subtype == PortIdSubtype::networkAddress) {
      text = networkAddressText(value.view());
   }
   return named(subtype, text, plain);
}

}  // namespace Lldp
