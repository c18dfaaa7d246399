#include "Wirekit/IntfId.h"

#include <algorithm>
#include <ostream>

namespace Wirekit {
namespace {

constexpr std::size_t longestName = 64;

bool isDigit(char c) {
   return c >= '0' && c <= '9';
}

// Takes the run of digits that `rest` begins with, without its leading zeros.
std::string_view takeNumber(std::string_view& rest) {
   auto end = std::find_if_not(rest.begin(), rest.end(), isDigit);
   std::string_view number = rest.substr(0, static_cast<std::size_t>(end - rest.begin()));
   rest.remove_prefix(number.size());
   number.remove_prefix(std::min(number.find_first_not_of('0'), number.size()));
   return number;
}

std::strong_ordering compareNumbers(std::string_view a, std::string_view b) {
   return a.size() != b.size() ? a.size() <=> b.size() : a <=> b;
}

std::strong_ordering compareNatural(std::string_view a, std::string_view b) {
   while (!a.empty() && !b.empty()) {
      std::strong_ordering order = std::strong_ordering::equal;
      if (isDigit(a.front()) && isDigit(b.front())) {
         order = compareNumbers(takeNumber(a), takeNumber(b));
      } else {
         order = a.front() <=> b.front();
         a.remove_prefix(1);
         b.remove_prefix(1);
      }
      if (order != 0) return order;
   }
   return a.size() <=> b.size();
}

}  // namespace

bool IntfId::fromText(std::string_view text, IntfId& intfId) {
   auto visible = [](char c) { return c > ' ' && c < '\x7F'; };
   if (text.empty() || text.size() > longestName || !std::ranges::all_of(text, visible)) {
      return false;
   }
   intfId = IntfId(text);
   return true;
}

std::strong_ordering operator<=>(const IntfId& a, const IntfId& b) noexcept {
   std::strong_ordering order = compareNatural(a.name_.view(), b.name_.view());
   // Names that differ in leading zeros only are two names all the same.
   return order != 0 ? order : a.name_ <=> b.name_;
}

std::ostream& operator<<(std::ostream& out, const IntfId& intfId) {
   return out << intfId.stringValue();
}

}  // namespace Wirekit
