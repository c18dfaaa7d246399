#include "Wirekit/EthAddr.h"

#include <ostream>

namespace Wirekit {
namespace {

int hexDigit(char c) {
   if (c >= '0' && c <= '9') return c - '0';
   if (c >= 'a' && c <= 'f') return c - 'a' + 10;
   if (c >= 'A' && c <= 'F') return c - 'A' + 10;
   return -1;
}

// A written form: its separator, and how many digits stand between two of them.
struct Form {
   char separator;
   std::size_t digits;
};

bool parse(std::string_view text, Form form, std::array<uint8_t, EthAddr::size>& octets) {
   constexpr std::size_t allDigits = 2 * EthAddr::size;
   if (text.size() != allDigits + allDigits / form.digits - 1) return false;
   std::size_t digit = 0;
   for (std::size_t i = 0; i < text.size(); ++i) {
      if (i % (form.digits + 1) == form.digits) {
         if (text[i] != form.separator) return false;
         continue;
      }
      int value = hexDigit(text[i]);
      if (value < 0) return false;
      uint8_t& octet = octets[digit++ / 2];
      octet = static_cast<uint8_t>(octet << 4 | value);
   }
   return true;
}

}  // namespace

Rex::String EthAddr::stringValue() const {
   return Rex::format("%02x:%02x:%02x:%02x:%02x:%02x", octets_[0], octets_[1], octets_[2],
                      octets_[3], octets_[4], octets_[5]);
}

bool EthAddr::fromText(std::string_view text, EthAddr& addr) {
   for (Form form : {Form{':', 2}, Form{'-', 2}, Form{'.', 4}}) {
      EthAddr made;
      if (!parse(text, form, made.octets_)) continue;
      addr = made;
      return true;
   }
   return false;
}

std::ostream& operator<<(std::ostream& out, const EthAddr& addr) {
   return out << addr.stringValue();
}

std::size_t hash_value(const EthAddr& addr) noexcept {
   uint64_t number = 0;
   std::memcpy(&number, addr.octets(), EthAddr::size);
   return std::hash<uint64_t>()(number);
}

}  // namespace Wirekit
