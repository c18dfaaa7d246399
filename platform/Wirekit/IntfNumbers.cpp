#include "Wirekit/IntfNumbers.h"

#include <charconv>

namespace Wirekit {
namespace {
constexpr std::ptrdiff_t mostDigits = 6;
}  // namespace

std::optional<IntfNumbers> intfNumbers(std::string_view name, std::string_view kind) {
   if (!name.starts_with(kind)) return std::nullopt;
   const char* at = name.data() + kind.size();
   const char* end = name.data() + name.size();
   IntfNumbers found;
   for (uint32_t& number : found.number) {
      auto [behind, error] = std::from_chars(at, end, number);
      if (error != std::errc() || behind - at > mostDigits) return std::nullopt;
      ++found.count;
      if (behind == end) return found;
      if (*behind != '/') return std::nullopt;
      at = behind + 1;
   }
   return std::nullopt;
}

}  // namespace Wirekit
