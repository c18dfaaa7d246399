// The name of a network namespace.
#pragma once

#include <string_view>

#include "Rex/String.h"

namespace Wirekit {

class NamespaceName {
 public:
   // The namespace that the process itself is in.
   static NamespaceName defaultNamespace() { return NamespaceName("default"); }

   NamespaceName() : NamespaceName("default") {}
   explicit NamespaceName(const Rex::String& name) : name_(name) {}
   explicit NamespaceName(const char* name) : name_(name) {}

   const Rex::String& stringValue() const { return name_; }
   static bool fromText(std::string_view text, NamespaceName& name) {
      if (text.empty()) return false;
      name = NamespaceName(Rex::String(text));
      return true;
   }
   static constexpr const char* textForm = "the name of a network namespace";

   friend bool operator==(const NamespaceName&, const NamespaceName&) = default;
   friend auto operator<=>(const NamespaceName&, const NamespaceName&) = default;
   friend std::size_t hash_value(const NamespaceName& name) { return hash_value(name.name_); }

 private:
   Rex::String name_;
};

}  // namespace Wirekit
