// The identity of an interface: its name, such as Ethernet3/1. The empty one means none.
#pragma once

#include <compare>
#include <cstddef>
#include <functional>
#include <iosfwd>
#include <string>
#include <string_view>

#include "Rex/String.h"

namespace Wirekit {

class IntfId {
 public:
   IntfId() = default;
   explicit IntfId(const Rex::String& name) : name_(name) {}
   explicit IntfId(std::string_view name) : name_(name) {}
   explicit IntfId(const std::string& name) : name_(name) {}
   explicit IntfId(const char* name) : name_(name) {}

   const Rex::String& stringValue() const { return name_; }
   bool empty() const { return name_.empty(); }

   // False, and `intfId` as it was, for a text that no interface can be named by.
   static bool fromText(std::string_view text, IntfId& intfId);
   static constexpr const char* textForm = "an interface name of 1 to 64 visible characters";

   friend bool operator==(const IntfId& a, const IntfId& b) noexcept = default;
   // By name, numbers in it by value: Ethernet2 before Ethernet10, Ethernet3/2 before Ethernet10/1.
   friend std::strong_ordering operator<=>(const IntfId& a, const IntfId& b) noexcept;

 private:
   Rex::String name_;
};

std::ostream& operator<<(std::ostream& out, const IntfId& intfId);
inline std::size_t hash_value(const IntfId& intfId) noexcept {
   return hash_value(intfId.stringValue());
}

}  // namespace Wirekit

template <>
struct std::hash<Wirekit::IntfId> {
   std::size_t operator()(const Wirekit::IntfId& intfId) const noexcept {
      return hash_value(intfId);
   }
};
