#include "Rex/Printable.h"

#include <fmt/format.h>

#include "Rex/Utf8.h"

namespace Rex {
namespace {

// Characters that steer the direction or the layout of text: they would let one text pass for
// another on an operator's screen.
bool steersText(char32_t c) {
   return (c >= 0x200B && c <= 0x200F) || (c >= 0x2028 && c <= 0x202E) ||
          (c >= 0x2060 && c <= 0x206F) || c == 0xFEFF || c == 0x061C ||
          (c >= 0xFFF9 && c <= 0xFFFB) || c == 0x00AD || (c >= 0xE0000 && c <= 0xE007F);
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
      bool harmless = next.valid && !isControl(next.character) && !steersText(next.character);
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
