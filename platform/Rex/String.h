// Reference-counted text: one pointer wide, copied by counting. May hold any octets, NUL included.
#pragma once

#include <compare>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <iosfwd>
#include <string>
#include <string_view>

namespace Rex {

class String {
 public:
   String() = default;
   String(const char* text) : String(std::string_view(text)) {}         // NOLINT
   String(const std::string& text) : String(std::string_view(text)) {}  // NOLINT
   explicit String(std::string_view octets);
   String(const char* octets, std::size_t length) : String(std::string_view(octets, length)) {}
   String(const String& other) noexcept : text_(other.text_) {
      if (text_) ++text_->references;
   }
   String(String&& other) noexcept : text_(other.text_) { other.text_ = nullptr; }
   ~String() { drop(); }
   String& operator=(const String& other) noexcept {
      String copy(other);
      std::swap(text_, copy.text_);
      return *this;
   }
   String& operator=(String&& other) noexcept {
      std::swap(text_, other.text_);
      return *this;
   }

   // The octets, NUL-terminated.
   const char* charPtr() const noexcept { return text_ ? text_->octets() : ""; }
   std::size_t bytes() const noexcept { return text_ ? text_->length : 0; }
   bool empty() const noexcept { return !text_; }
   std::string_view view() const noexcept { return {charPtr(), bytes()}; }
   std::string stdString() const { return std::string(view()); }

   // At most `length` octets from `pos` on; empty when `pos` lies past the end.
   String substr(std::size_t pos, std::size_t length = SIZE_MAX) const;
   bool startsWith(std::string_view text) const noexcept { return view().starts_with(text); }
   String& operator+=(std::string_view more);
   String& operator+=(const String& more) { return *this += more.view(); }
   String& operator+=(const char* more) { return *this += std::string_view(more); }
   friend String operator+(const String& a, const String& b) { return String(a) += b; }

   friend bool operator==(const String& a, const String& b) noexcept {
      return a.text_ == b.text_ || a.view() == b.view();
   }
   friend bool operator==(const String& a, const char* b) noexcept { return a.view() == b; }
   friend std::strong_ordering operator<=>(const String& a, const String& b) noexcept {
      return a.view() <=> b.view();
   }

 private:
   struct Text {
      uint32_t references;
      uint32_t length;
      char* octets() noexcept { return reinterpret_cast<char*>(this + 1); }
   };
   static Text* newText(std::size_t length);
   void drop() noexcept;

   Text* text_ = nullptr;  // null for the empty text
};

std::ostream& operator<<(std::ostream& out, const String& text);
inline std::size_t hash_value(const String& text) noexcept {
   return std::hash<std::string_view>()(text.view());
}

// Formats like printf.
[[gnu::format(printf, 1, 2)]] String format(const char* format, ...);

}  // namespace Rex

template <>
struct std::hash<Rex::String> {
   std::size_t operator()(const Rex::String& text) const noexcept { return hash_value(text); }
};
