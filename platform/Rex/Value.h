// Value types: plain copied structures. A value type is an aggregate with defaulted comparison and
// one line of Boost.Describe; its hash and its printed form follow from that here, its JSON form in
// Rex/Json.h. A type with a text form of its own has `stringValue()`, which then is what prints.
#pragma once

#include <boost/container_hash/hash.hpp>
#include <boost/describe.hpp>
#include <boost/mp11/algorithm.hpp>
#include <concepts>
#include <ostream>
#include <sstream>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "Rex/Assert.h"
#include "Rex/PoolAllocator.h"
#include "Rex/Printable.h"
#include "Rex/Ptr.h"
#include "Rex/String.h"

namespace Rex {

template <class T>
concept HasStringValue = requires(const T& value) {
   { value.stringValue() } -> std::convertible_to<String>;
};
template <class T>
concept DescribedStruct = boost::describe::has_describe_members<T>::value && !std::is_enum_v<T>;
// The list that a value type may hold: its memory is the pool's, like that of texts.
template <class T>
using List = std::vector<T, PoolAllocator<T>>;
template <class T>
concept ListLike = requires {
   typename T::value_type;
   requires std::same_as<T, List<typename T::value_type>>;
};
template <class T>
concept DescribedEnum = std::is_enum_v<T> && boost::describe::has_describe_enumerators<T>::value;

// Calls `f(name, pointer to member)` for each described member, in order of declaration.
template <DescribedStruct T, class F>
void forEachMember(F&& f) {
   using Members = boost::describe::describe_members<T, boost::describe::mod_any_access>;
   boost::mp11::mp_for_each<Members>([&](auto member) { f(member.name, member.pointer); });
}

// Enumerator name; a number that has no name prints as the number.
template <DescribedEnum T>
const char* enumeratorName(T value) {
   return boost::describe::enum_to_string(value, nullptr);
}

template <class T>
size_t hashOf(const T& value) {
   return boost::hash<T>()(value);
}

template <class T>
void print(std::ostream& out, const T& value);

namespace detail {
void printNumber(std::ostream& out, double value);

template <class T>
void printStruct(std::ostream& out, const T& value) {
   const char* separator = "{";
   forEachMember<T>([&](const char* name, auto pointer) {
      out << separator << name << ": ";
      print(out, value.*pointer);
      separator = ", ";
   });
   out << "}";
}

template <class T>
void printList(std::ostream& out, const T& list) {
   const char* separator = "";
   out << "[";
   for (const auto& value : list) {
      out << separator;
      print(out, value);
      separator = ", ";
   }
   out << "]";
}
}  // namespace detail

template <class T>
void print(std::ostream& out, const T& value) {
   if constexpr (std::same_as<T, bool>) {
      out << (value ? "true" : "false");
   } else if constexpr (std::same_as<T, char>) {
      out << value;
   } else if constexpr (std::integral<T>) {
      out << +value;
   } else if constexpr (std::floating_point<T>) {
      detail::printNumber(out, value);
   } else if constexpr (HasStringValue<T>) {
      out << value.stringValue().view();
   } else if constexpr (std::same_as<T, String>) {
      out << printable(value.view());
   } else if constexpr (std::convertible_to<T, std::string_view>) {
      out << std::string_view(value);
   } else if constexpr (DescribedEnum<T>) {
      const char* name = enumeratorName(value);
      if (name) {
         out << name;
      } else {
         out << static_cast<long long>(value);
      }
   } else if constexpr (DescribedStruct<T>) {
      detail::printStruct(out, value);
   } else if constexpr (ListLike<T>) {
      detail::printList(out, value);
   } else {
      out << value;
   }
}

// The printed form.
template <class T>
String valueToString(const T& value) {
   std::ostringstream out;
   print(out, value);
   return String(out.str());
}

// The printed form of a value inside another: a text is set in quotes there.
template <class T>
String valueToStrep(const T& value) {
   if constexpr (std::same_as<T, String>) {
      return String("\"" + printable(value.view()) + "\"");
   } else {
      return valueToString(value);
   }
}

// Text of at most `limit` octets; a longer one is a range error whose words name the type.
template <size_t limit, class Words>
class BoundedText {
 public:
   BoundedText() = default;
   explicit BoundedText(const String& value);
   BoundedText(const char* octets, size_t length) : BoundedText(String(octets, length)) {}

   const String& value() const { return value_; }
   const char* charPtr() const { return value_.charPtr(); }
   size_t bytes() const { return value_.bytes(); }
   bool empty() const { return value_.empty(); }
   std::string_view view() const { return value_.view(); }
   // The printed form, harmless whatever the octets are.
   String stringValue() const { return String(printable(value_.view())); }

   static constexpr size_t maxBytes = limit;
   friend bool operator==(const BoundedText&, const BoundedText&) = default;
   friend std::strong_ordering operator<=>(const BoundedText&, const BoundedText&) = default;
   friend size_t hash_value(const BoundedText& text) { return hash_value(text.value_); }

 private:
   String value_;
};

template <size_t limit, class Words>
BoundedText<limit, Words>::BoundedText(const String& value) : value_(value) {
   if (value_.bytes() > limit) throwRangeException(Words::text);
}

// A number from `least` to `most`, which starts out as `least`; any other is a range error whose
// words name the type.
template <std::integral Number, Number least, Number most, class Words>
class BoundedNumber {
 public:
   static constexpr Number leastValue = least;
   static constexpr Number mostValue = most;

   constexpr BoundedNumber() = default;
   // Takes any width, so that a number too wide is an error too and not cut before the test.
   template <std::integral Wide>
   constexpr BoundedNumber(Wide value)  // NOLINT(google-explicit-constructor)
       : value_(static_cast<Number>(value)) {
      if (std::cmp_less(+value, least) || std::cmp_greater(+value, most)) {
         throwRangeException(Words::text);
      }
   }
   constexpr Number value() const { return value_; }
   String stringValue() const { return valueToString(value_); }

   friend bool operator==(const BoundedNumber&, const BoundedNumber&) = default;
   friend auto operator<=>(const BoundedNumber&, const BoundedNumber&) = default;
   friend size_t hash_value(const BoundedNumber& number) { return hashOf(number.value_); }

 private:
   Number value_ = least;
};

}  // namespace Rex
