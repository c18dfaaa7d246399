#include "cli/Terminal.h"

#include <string_view>

namespace LldpCli {
namespace {

// The terminal's codes (ECMA-48, 8.3.117).
const char* codeOf(Style style) {
   switch (style) {
      case Style::heading:
         return "\x1b[1m";
      case Style::bad:
         return "\x1b[31m";
      case Style::faint:
         return "\x1b[2m";
      case Style::plain:
         break;
   }
   return "";
}

}  // namespace

std::string styled(const std::string& text, Style style, const Terminal& terminal) {
   if (!terminal.colours || style == Style::plain) return text;
   return codeOf(style) + text + "\x1b[0m";
}

bool wantsColours(const char* noColor, const char* term) {
   bool forbidden = noColor && *noColor;
   return !forbidden && term && *term && std::string_view(term) != "dumb";
}

}  // namespace LldpCli
