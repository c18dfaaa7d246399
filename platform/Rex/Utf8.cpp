#include "Rex/Utf8.h"

namespace Rex {
namespace {

constexpr Utf8 broken{false, 1, 0};

struct Form {
   size_t length;
   char32_t first;     // payload bits of the first octet
   char32_t smallest;  // a shorter form exists below this
};

bool formOf(unsigned char lead, Form& form) {
   if (lead >= 0xC2 && lead <= 0xDF) {
      form = {2, static_cast<char32_t>(lead & 0x1F), 0x80};
   } else if (lead >= 0xE0 && lead <= 0xEF) {
      form = {3, static_cast<char32_t>(lead & 0x0F), 0x800};
   } else if (lead >= 0xF0 && lead <= 0xF4) {
      form = {4, static_cast<char32_t>(lead & 0x07), 0x10000};
   } else {
      return false;
   }
   return true;
}

}  // namespace

Utf8 decodeUtf8(std::string_view octets) noexcept {
   auto lead = static_cast<unsigned char>(octets[0]);
   if (lead < 0x80) return {true, 1, lead};
   Form form{};
   if (!formOf(lead, form) || octets.size() < form.length) return broken;
   char32_t character = form.first;
   for (size_t i = 1; i < form.length; ++i) {
      auto next = static_cast<unsigned char>(octets[i]);
      if ((next & 0xC0) != 0x80) return broken;
      character = character << 6 | (next & 0x3F);
   }
   bool surrogate = character >= 0xD800 && character <= 0xDFFF;
   if (character < form.smallest || character > 0x10FFFF || surrogate) return broken;
   return {true, form.length, character};
}

bool isUtf8(std::string_view octets) noexcept {
   while (!octets.empty()) {
      Utf8 next = decodeUtf8(octets);
      if (!next.valid) return false;
      octets.remove_prefix(next.length);
   }
   return true;
}

}  // namespace Rex
