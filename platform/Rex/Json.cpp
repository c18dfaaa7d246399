#include "Rex/Json.h"

#include <fmt/format.h>

#include "Rex/Utf8.h"

namespace Rex {
namespace {

int hexDigit(char c) {
   if (c >= '0' && c <= '9') return c - '0';
   if (c >= 'a' && c <= 'f') return c - 'a' + 10;
   if (c >= 'A' && c <= 'F') return c - 'A' + 10;
   return -1;
}

String octetsFromHex(const std::string& hex, const Json& json, const std::string& path) {
   std::string octets;
   for (size_t i = 0; i + 1 < hex.size(); i += 2) {
      int high = hexDigit(hex[i]);
      int low = hexDigit(hex[i + 1]);
      if (high < 0 || low < 0) break;
      octets += static_cast<char>(high << 4 | low);
   }
   if (octets.size() * 2 != hex.size()) expected(json, path, "pairs of hexadecimal digits");
   return String(octets);
}

}  // namespace

std::string fieldPath(const std::string& path, std::string_view name) {
   return fmt::format("{}{}{}", path, path.empty() ? "" : ".", name);
}

std::string elementPath(const std::string& path, size_t index) {
   return fmt::format("{}[{}]", path, index);
}

void expected(const Json& json, const std::string& path, const std::string& what) {
   std::string got = json.dump(-1, ' ', true, Json::error_handler_t::replace);
   if (got.size() > 60) got = got.substr(0, 57) + "...";
   throw JsonError(path, "expected " + what + ", got " + got);
}

namespace detail {

Json textToJson(const String& text) {
   if (isUtf8(text.view())) return Json(text.stdString());
   std::string hex;
   for (unsigned char octet : text.view()) hex += fmt::format("{:02x}", octet);
   return Json{{"octets", hex}};
}

String textFromJson(const Json& json, const std::string& path) {
   if (json.is_string()) return String(json.get_ref<const std::string&>());
   if (json.is_object() && json.size() == 1 && json.contains("octets") &&
       json["octets"].is_string()) {
      return octetsFromHex(json["octets"].get<std::string>(), json, path);
   }
   expected(json, path, "text");
}

long long integerFromJson(const Json& json, const std::string& path, long long least,
                          unsigned long long most) {
   bool fits = false;
   if (json.is_number_unsigned()) {
      auto number = json.get<unsigned long long>();
      fits = number <= most && (least <= 0 || number >= static_cast<unsigned long long>(least));
   } else if (json.is_number_integer()) {
      auto number = json.get<long long>();
      fits = number >= least && (number < 0 || static_cast<unsigned long long>(number) <= most);
   }
   if (!fits) expected(json, path, fmt::format("a whole number from {} to {}", least, most));
   return json.get<long long>();
}

double doubleFromJson(const Json& json, const std::string& path) {
   if (json.is_null()) return std::numeric_limits<double>::infinity();
   if (!json.is_number()) expected(json, path, "a number");
   return json.get<double>();
}

Json keyJson(std::string_view text) {
   auto follow = [](int depth, Json::parse_event_t, const Json&) {
      if (static_cast<size_t>(depth) <= mostJsonLevels) return true;
      throw JsonError("", fmt::format("nested more than {} levels deep", mostJsonLevels));
   };
   return Json::parse(text, follow, false);
}

}  // namespace detail
}  // namespace Rex
