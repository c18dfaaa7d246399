#include "cli/MacAddress.h"

#include <algorithm>
#include <cctype>

namespace LldpCli {
namespace {

// Digits in groups of `size`.
std::string grouped(const std::string& digits, size_t size, char between) {
   std::string made;
   for (size_t at = 0; at < digits.size(); at += size) {
      if (at) made += between;
      made += digits.substr(at, size);
   }
   return made;
}

}  // namespace

std::optional<std::string> macAddress(std::string_view typed) {
   std::string lower;
   for (unsigned char c : typed) lower += static_cast<char>(std::tolower(c));
   std::string digits;
   std::ranges::copy_if(lower, std::back_inserter(digits),
                        [](unsigned char c) { return std::isxdigit(c) != 0; });
   std::string usual = grouped(digits, 2, ':');
   bool good = digits.size() == 12 && (lower == usual || lower == grouped(digits, 2, '-') ||
                                       lower == grouped(digits, 4, '.'));
   return good ? std::optional(usual) : std::nullopt;
}

}  // namespace LldpCli
