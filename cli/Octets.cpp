#include "cli/Octets.h"

#include <arpa/inet.h>
#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <charconv>

#include "Rex/Printable.h"
#include "cli/Failure.h"

namespace LldpCli {

std::string octets(const Json& text) {
   if (text.is_string()) return text.get<std::string>();
   const std::string& digits = text.at("octets").get_ref<const std::string&>();
   std::string out;
   for (size_t i = 0; i < digits.size(); i += 2) {
      unsigned octet = 0;
      const char* pair = digits.data() + i;
      auto read = std::from_chars(pair, pair + std::min<size_t>(2, digits.size() - i), octet, 16);
      if (read.ptr != pair + 2) throw Failure("the agent's answer has broken octets in it");
      out += static_cast<char>(octet);
   }
   return out;
}

std::string text(const Json& text) {
   return Rex::printable(octets(text));
}

std::string hex(std::string_view octets, std::string_view separator) {
   std::string out;
   for (unsigned char octet : octets) {
      if (!out.empty()) out += separator;
      out += fmt::format("{:02x}", octet);
   }
   return out;
}

std::string address(unsigned family, std::string_view octets) {
   std::array<char, INET6_ADDRSTRLEN> text{};
   if (family == 1 && octets.size() == 4) {
      return inet_ntop(AF_INET, octets.data(), text.data(), text.size());
   }
   if (family == 2 && octets.size() == 16) {
      return inet_ntop(AF_INET6, octets.data(), text.data(), text.size());
   }
   return hex(octets, family == 6 ? ":" : "");
}

}  // namespace LldpCli
