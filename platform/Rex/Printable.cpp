#include "Rex/Printable.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>

#include "Rex/Utf8.h"

namespace Rex {
namespace {

struct Range {
   char32_t first;
   char32_t last;
};

// Characters that steer the direction or the layout of text, or that show nothing at all: they
// would let one text pass for another on an operator's screen. All that Unicode lists as default
// ignorable (DerivedCoreProperties), the line and paragraph separators and the annotation marks.
constexpr auto unseen = std::to_array<Range>({
    {0x00AD, 0x00AD},
    {0x034F, 0x034F},
    {0x061C, 0x061C},
    {0x115F, 0x1160},
    {0x17B4, 0x17B5},
    {0x180B, 0x180F},
    {0x200B, 0x200F},
    {0x2028, 0x202E},
    {0x2060, 0x206F},
    {0x3164, 0x3164},
    {0xFE00, 0xFE0F},
    {0xFEFF, 0xFEFF},
    {0xFFA0, 0xFFA0},
    {0xFFF0, 0xFFFB},
    {0x1BCA0, 0x1BCA3},
    {0x1D173, 0x1D17A},
    {0xE0000, 0xE0FFF},
});

bool isUnseen(char32_t c) {
   return std::ranges::any_of(unseen, [c](Range r) { return c >= r.first && c <= r.last; });
}

bool isControl(char32_t c) {
   return c < 0x20 || (c >= 0x7F && c < 0xA0);
}

}  // namespace

std::string printable(std::string_view octets) {
   std::string out;
   out.reserve(octets.size());
   for (size_t at = 0; at < octets.size();) {
      Utf8 next = decodeUtf8(octets.substr(at));
      bool harmless = next.valid && !isControl(next.character) && !isUnseen(next.character);
      if (harmless && next.character != '\\') {
         out.append(octets.substr(at, next.length));
      } else if (harmless) {
         out += "\\\\";
      } else {
         for (size_t i = 0; i < next.length; ++i) {
            out += fmt::format("\\x{:02x}", static_cast<unsigned char>(octets[at + i]));
         }
      }
      at += next.length;
   }
   return out;
}

}  // namespace Rex
