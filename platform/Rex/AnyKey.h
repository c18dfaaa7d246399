// A collection's key of any type, as it stands in the queue of changes.
#pragma once

#include <any>
#include <cstddef>
#include <utility>

#include "Rex/Value.h"

namespace Rex {

class AnyKey {
 public:
   AnyKey() = default;  // no key: a scalar attribute changed
   template <class K>
   explicit AnyKey(const K& key)
       : key_(key), hash_(hashOf(key)), equal_([](const std::any& a, const std::any& b) {
            return *std::any_cast<K>(&a) == *std::any_cast<K>(&b);
         }) {}

   bool has() const { return key_.has_value(); }
   size_t hash() const { return hash_; }
   // The key as what it is; the caller knows the type from the attribute.
   template <class K>
   const K& as() const {
      return *std::any_cast<K>(&key_);
   }
   friend bool operator==(const AnyKey& a, const AnyKey& b) {
      if (!a.has() || !b.has()) return a.has() == b.has();
      return a.hash_ == b.hash_ && a.key_.type() == b.key_.type() && a.equal_(a.key_, b.key_);
   }

 private:
   std::any key_;
   size_t hash_ = 0;
   bool (*equal_)(const std::any&, const std::any&) = nullptr;
};

}  // namespace Rex
