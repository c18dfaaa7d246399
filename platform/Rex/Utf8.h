// Strict UTF-8, one character at a time (Unicode 15, section 3.9, table 3-7).
#pragma once

#include <cstddef>
#include <string_view>

namespace Rex {

struct Utf8 {
   bool valid;          // false: the first octet begins no character
   size_t length;       // octets taken; 1 when not valid
   char32_t character;  // meaningful when valid
};

// Decodes the first character of a text that is not empty.
Utf8 decodeUtf8(std::string_view octets) noexcept;

// Whether the whole text is well-formed.
bool isUtf8(std::string_view octets) noexcept;

}  // namespace Rex
