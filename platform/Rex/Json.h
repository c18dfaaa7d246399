// JSON of values, both ways, from their description.
//
// - A structure is an object of its fields. Missing fields keep their default.
// - An enumeration is its enumerator's name; a number is taken too.
// - Text is a string when it is well-formed UTF-8, and {"octets": "hexadecimal"} when not.
// - A type with `stringValue()` and `static bool fromText(std::string_view, T&)` is that string.
// - A bounded number is that number.
// - Infinite times are null.
// - A list is an array.
#pragma once

#include <concepts>
#include <limits>
#include <nlohmann/json.hpp>
#include <stdexcept>
#include <string>

#include "Rex/Value.h"

namespace Rex {

using Json = nlohmann::ordered_json;

// What reads foreign text takes no more levels: going through a value, also to print it, is a
// recursion. Nothing that is written in earnest is nearly as deep.
inline constexpr size_t mostJsonLevels = 16;

// What is wrong with a JSON value: where (a path of field names) and what would be right.
class JsonError : public std::runtime_error {
 public:
   JsonError(const std::string& path, const std::string& words)
       : std::runtime_error(path.empty() ? words : path + ": " + words), path_(path) {}
   const std::string& path() const { return path_; }

 private:
   std::string path_;
};

// Where a part of the value at a path stands, as JsonError tells it: "a.b[2].c".
std::string fieldPath(const std::string& path, std::string_view name);
std::string elementPath(const std::string& path, size_t index);

// Throws the JsonError of a value that is not `what` is wanted.
[[noreturn]] void expected(const Json& json, const std::string& path, const std::string& what);

template <class T>
concept HasTextForm = HasStringValue<T> && requires(std::string_view text, T& value) {
   { T::fromText(text, value) } -> std::same_as<bool>;
};
template <class T>
concept BoundedLike = requires(const T& value, const String& text) {
   { value.value() } -> std::same_as<const String&>;
   T(text);
   T::maxBytes;
};

template <class T>
concept BoundedNumberLike = requires(const T& value) {
   { value.value() } -> std::integral;
   T::leastValue;
   T::mostValue;
};

namespace detail {
Json textToJson(const String& text);
String textFromJson(const Json& json, const std::string& path);
// The number, to be converted to its own type: one above the largest long long comes out negative.
long long integerFromJson(const Json& json, const std::string& path, long long least,
                          unsigned long long most);
double doubleFromJson(const Json& json, const std::string& path);
// The JSON that a key's text is; discarded when it is none. Throws JsonError for a deeper one.
Json keyJson(std::string_view text);
}  // namespace detail

template <class T>
Json toJson(const T& value) {
   if constexpr (std::same_as<T, bool> || std::integral<T>) {
      return value;
   } else if constexpr (std::floating_point<T>) {
      return value == std::numeric_limits<T>::infinity() ? Json() : Json(value);
   } else if constexpr (std::same_as<T, String>) {
      return detail::textToJson(value);
   } else if constexpr (BoundedLike<T>) {
      return detail::textToJson(value.value());
   } else if constexpr (BoundedNumberLike<T>) {
      return value.value();
   } else if constexpr (HasTextForm<T>) {
      return detail::textToJson(String(value.stringValue()));
   } else if constexpr (DescribedEnum<T>) {
      const char* name = enumeratorName(value);
      return name ? Json(name) : Json(static_cast<long long>(value));
   } else if constexpr (ListLike<T>) {
      Json array = Json::array();
      for (const auto& one : value) array.push_back(toJson(one));
      return array;
   } else {
      static_assert(DescribedStruct<T>, "the value type has no description");
      Json object = Json::object();
      forEachMember<T>(
          [&](const char* name, auto pointer) { object[name] = toJson(value.*pointer); });
      return object;
   }
}

template <class T>
void fromJson(const Json& json, T& value, const std::string& path);

namespace detail {

template <DescribedEnum T>
void enumFromJson(const Json& json, T& value, const std::string& path) {
   std::string names;
   bool found = false;
   boost::mp11::mp_for_each<boost::describe::describe_enumerators<T>>([&](auto e) {
      names += (names.empty() ? "" : ", ") + std::string(e.name);
      bool same = json.is_string() ? json.get<std::string>() == e.name
                                   : json.is_number_integer() &&
                                         json.get<long long>() == static_cast<long long>(e.value);
      if (same) {
         value = e.value;
         found = true;
      }
   });
   if (!found) expected(json, path, "one of " + names);
}

template <DescribedStruct T>
void structFromJson(const Json& json, T& value, const std::string& path) {
   if (!json.is_object()) expected(json, path, "an object");
   T made = value;
   size_t taken = 0;
   forEachMember<T>([&](const char* name, auto pointer) {
      auto at = json.find(name);
      if (at == json.end()) return;
      ++taken;
      fromJson(*at, made.*pointer, fieldPath(path, name));
   });
   if (taken != json.size()) {
      for (const auto& field : json.items()) {
         const std::string& name = field.key();
         bool known = false;
         forEachMember<T>([&](const char* member, auto) { known = known || name == member; });
         if (!known) throw JsonError(fieldPath(path, name), "no such field");
      }
   }
   value = made;
}

template <ListLike T>
void listFromJson(const Json& json, T& value, const std::string& path) {
   if (!json.is_array()) expected(json, path, "an array");
   T made;
   for (size_t i = 0; i < json.size(); ++i) {
      fromJson(json[i], made.emplace_back(), elementPath(path, i));
   }
   value = std::move(made);
}

}  // namespace detail

// Reads a value; throws JsonError, and then leaves `value` as it was.
template <class T>
void fromJson(const Json& json, T& value, const std::string& path) {
   if constexpr (std::same_as<T, bool>) {
      if (!json.is_boolean()) expected(json, path, "true or false");
      value = json.get<bool>();
   } else if constexpr (std::integral<T>) {
      value = static_cast<T>(
          detail::integerFromJson(json, path, static_cast<long long>(std::numeric_limits<T>::min()),
                                  static_cast<unsigned long long>(std::numeric_limits<T>::max())));
   } else if constexpr (std::floating_point<T>) {
      value = detail::doubleFromJson(json, path);
   } else if constexpr (std::same_as<T, String>) {
      value = detail::textFromJson(json, path);
   } else if constexpr (BoundedLike<T>) {
      String text = detail::textFromJson(json, path);
      if (text.bytes() > T::maxBytes) {
         expected(json, path, "text of at most " + std::to_string(T::maxBytes) + " octets");
      }
      value = T(text);
   } else if constexpr (BoundedNumberLike<T>) {
      value = T(static_cast<decltype(value.value())>(
          detail::integerFromJson(json, path, T::leastValue, T::mostValue)));
   } else if constexpr (HasTextForm<T>) {
      // The default may print as nothing, which stands for none and is no text of the type.
      String text = detail::textFromJson(json, path);
      if (text.empty() && String(T{}.stringValue()).empty()) {
         value = T{};
      } else if (!T::fromText(text.view(), value)) {
         expected(json, path, T::textForm);
      }
   } else if constexpr (DescribedEnum<T>) {
      detail::enumFromJson(json, value, path);
   } else if constexpr (ListLike<T>) {
      detail::listFromJson(json, value, path);
   } else {
      detail::structFromJson(json, value, path);
   }
}

// Keys of collections as they stand in paths and as names of JSON objects: their text. A structured
// key is its compact JSON.
template <class K>
std::string keyToText(const K& key) {
   if constexpr (std::integral<K>) {
      return std::to_string(key);
   } else if constexpr (std::same_as<K, String>) {
      return key.stdString();
   } else if constexpr (HasTextForm<K>) {
      return String(key.stringValue()).stdString();
   } else {
      return toJson(key).dump();
   }
}
// Reads a key; throws JsonError.
template <class K>
void readKey(std::string_view text, K& key) {
   if constexpr (std::same_as<K, String>) {
      key = String(text);
   } else if constexpr (HasTextForm<K>) {
      if (!K::fromText(text, key)) expected(Json(text), "", K::textForm);
   } else {
      Json json = detail::keyJson(text);
      fromJson(json.is_discarded() ? Json(text) : json, key, "");
      if (json.is_discarded()) expected(Json(text), "", "the key as JSON");
   }
}
template <class K>
bool keyFromText(std::string_view text, K& key) {
   try {
      readKey(text, key);
   } catch (const std::exception&) {
      return false;
   }
   return true;
}

// What is wrong with a text that is to be a key; empty when it is one.
template <class K>
std::string keyTextFault(std::string_view text) {
   try {
      K key{};
      readKey(text, key);
   } catch (const std::exception& error) {
      return error.what();
   }
   return {};
}

}  // namespace Rex
