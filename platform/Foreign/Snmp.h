// Object identifiers, as management protocols write them.
#pragma once

#include <boost/describe.hpp>
#include <compare>

#include "Rex/Value.h"

namespace Snmp {

// Dotted text such as "1.3.6.1"; empty for no object identifier.
struct ObjectIdentifier {
   Rex::String text;

   bool empty() const { return text.empty(); }
   explicit operator bool() const { return !empty(); }
   Rex::String stringValue() const { return text; }
   static constexpr const char* textForm = "a dotted object identifier";
   static bool fromText(std::string_view text, ObjectIdentifier& oid) {
      if (text.find_first_not_of("0123456789.") != std::string_view::npos) return false;
      oid.text = Rex::String(text);
      return true;
   }
   auto operator<=>(const ObjectIdentifier&) const = default;
};
BOOST_DESCRIBE_STRUCT(ObjectIdentifier, (), (text))

}  // namespace Snmp
