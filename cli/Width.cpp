#include "cli/Width.h"

#include <locale.h>
#include <wchar.h>

#include "Rex/Utf8.h"

namespace LldpCli {
namespace {

// wcwidth() answers for the locale in force, which an operator's terminal session need not have
// set to one that knows more than ASCII.
class Utf8Locale {
 public:
   Utf8Locale() : before_(uselocale(locale())) {}
   ~Utf8Locale() { uselocale(before_); }
   Utf8Locale(const Utf8Locale&) = delete;
   Utf8Locale& operator=(const Utf8Locale&) = delete;

 private:
   static locale_t locale() {
      static locale_t utf8 = newlocale(LC_CTYPE_MASK, "C.UTF-8", nullptr);
      return utf8;
   }
   locale_t before_;
};

size_t widthOf(const Rex::Utf8& next) {
   int width = next.valid ? wcwidth(static_cast<wchar_t>(next.character)) : 1;
   return width < 0 ? 1 : static_cast<size_t>(width);
}

}  // namespace

size_t displayWidth(std::string_view text) {
   Utf8Locale here;
   size_t width = 0;
   while (!text.empty()) {
      Rex::Utf8 next = Rex::decodeUtf8(text);
      width += widthOf(next);
      text.remove_prefix(next.length);
   }
   return width;
}

std::string cut(std::string_view text, size_t width) {
   if (displayWidth(text) <= width) return std::string(text);
   if (width == 0) return {};
   Utf8Locale here;
   size_t room = width - 1;
   size_t taken = 0;
   while (taken < text.size()) {
      Rex::Utf8 next = Rex::decodeUtf8(text.substr(taken));
      size_t wants = widthOf(next);
      if (wants > room) break;
      room -= wants;
      taken += next.length;
   }
   return std::string(text.substr(0, taken)).append(cutMark);
}

}  // namespace LldpCli
