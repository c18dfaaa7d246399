#include "Rex/String.h"

#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <ostream>

#include "Rex/Pool.h"

namespace Rex {

String::Text* String::newText(std::size_t length) {
   auto* text = static_cast<Text*>(Pool::allocate(sizeof(Text) + length + 1));
   text->references = 1;
   text->length = static_cast<uint32_t>(length);
   text->octets()[length] = '\0';
   return text;
}

String::String(std::string_view octets) {
   if (octets.empty()) return;
   text_ = newText(octets.size());
   std::memcpy(text_->octets(), octets.data(), octets.size());
}

void String::drop() noexcept {
   if (text_ && --text_->references == 0) {
      Pool::release(text_, sizeof(Text) + text_->length + 1);
   }
   text_ = nullptr;
}

String String::substr(std::size_t pos, std::size_t length) const {
   if (pos >= bytes()) return {};
   if (pos == 0 && length >= bytes()) return *this;
   return String(view().substr(pos, length));
}

String& String::operator+=(std::string_view more) {
   if (more.empty()) return *this;
   Text* joined = newText(bytes() + more.size());
   std::memcpy(joined->octets(), charPtr(), bytes());
   std::memcpy(joined->octets() + bytes(), more.data(), more.size());
   drop();
   text_ = joined;
   return *this;
}

std::ostream& operator<<(std::ostream& out, const String& text) {
   return out << text.view();
}

String format(const char* format, ...) {
   va_list arguments;
   va_start(arguments, format);
   va_list again;
   va_copy(again, arguments);
   int length = std::vsnprintf(nullptr, 0, format, arguments);
   va_end(arguments);
   std::string text(length < 0 ? 0 : static_cast<std::size_t>(length), '\0');
   if (length > 0) std::vsnprintf(text.data(), text.size() + 1, format, again);
   va_end(again);
   return String(text);
}

}  // namespace Rex
