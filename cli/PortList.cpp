#include "cli/PortList.h"

#include <fmt/format.h>

#include <array>
#include <charconv>
#include <optional>

#include "Rex/Printable.h"
#include "cli/Failure.h"

namespace LldpCli {
namespace {

constexpr size_t mostPorts = 4096;
constexpr size_t mostDigits = 6;

struct Kind {
   std::string_view word;
   size_t mostNumbers;
};
constexpr auto kinds = std::to_array<Kind>({{"Ethernet", 3}, {"Management", 2}});

[[noreturn]] void refuse(std::string_view list, std::string_view part) {
   throw Misuse(fmt::format(
       "PORTS: expected names such as Ethernet1, Ethernet1-4, Ethernet3/1-12 or Management1 with "
       "a comma between them, got '{}'{}",
       Rex::printable(part), part == list ? "" : " in '" + Rex::printable(list) + "'"));
}

// How many numbers with slashes between them make up the text; 0 for any other, and for a number
// with leading zeros.
size_t numbersIn(std::string_view text) {
   size_t count = 1;
   size_t digits = 0;
   char last = 0;
   for (char c : text) {
      bool digit = c >= '0' && c <= '9';
      if (!digit && (c != '/' || digits == 0)) return 0;
      if (digit && digits == 1 && last == '0') return 0;
      digits = digit ? digits + 1 : 0;
      count += digit ? 0 : 1;
      if (digits > mostDigits) return 0;
      last = c;
   }
   return digits > 0 ? count : 0;
}

// A name up to its last number, and that number.
struct Split {
   std::string_view stem;
   unsigned number = 0;
};

Split split(std::string_view name) {
   size_t digits = name.find_last_not_of("0123456789") + 1;
   Split parts{name.substr(0, digits)};
   std::from_chars(name.data() + digits, name.data() + name.size(), parts.number);
   return parts;
}

// The last number of a range, from what stands behind the dash.
std::optional<unsigned> lastOf(std::string_view name, std::string_view last) {
   Split first = split(name);
   Split end = split(last);
   std::string_view numbers = first.stem.substr(name.find_first_of("0123456789"));
   bool whole = isPortName(last) && end.stem == first.stem;
   bool rest = numbersIn(last) > 0 && (end.stem.empty() || end.stem == numbers);
   if (!whole && !rest) return std::nullopt;
   return end.number >= first.number ? std::optional(end.number) : std::nullopt;
}

}  // namespace

bool isPortName(std::string_view name) {
   for (const Kind& kind : kinds) {
      if (!name.starts_with(kind.word)) continue;
      size_t numbers = numbersIn(name.substr(kind.word.size()));
      return numbers > 0 && numbers <= kind.mostNumbers;
   }
   return false;
}

std::vector<std::string> portList(std::string_view list) {
   std::vector<std::string> ports;
   auto add = [&ports](std::string name) {
      if (ports.size() == mostPorts) {
         throw Misuse(fmt::format("PORTS: at most {} ports in one list", mostPorts));
      }
      ports.push_back(std::move(name));
   };
   for (std::string_view rest = list;;) {
      size_t comma = rest.find(',');
      std::string_view part = rest.substr(0, comma);
      size_t dash = part.find('-');
      std::string_view name = part.substr(0, dash);
      if (!isPortName(name)) refuse(list, part);
      if (dash == std::string_view::npos) {
         add(std::string(name));
      } else {
         auto last = lastOf(name, part.substr(dash + 1));
         if (!last) refuse(list, part);
         Split first = split(name);
         for (unsigned n = first.number; n <= *last; ++n) add(fmt::format("{}{}", first.stem, n));
      }
      if (comma == std::string_view::npos) return ports;
      rest.remove_prefix(comma + 1);
   }
}

}  // namespace LldpCli
