// How a declared member is described: its name, its kind, where it stands. Light on purpose, since
// every declaration of an entity includes it; what is made of it stands in Rex/Register.h.
#pragma once

#include <cstdint>
#include <type_traits>

namespace Rex {

template <class Owner, class Key>
struct Attr;

// A line of a declaration, as an overload's argument.
template <int number>
struct Line {};

enum class MemberKind {
   key,         // the entity's own key, fixed
   scalar,      // one value
   pointer,     // one entity that lives elsewhere; its JSON is null or its type
   values,      // values by key; a JSON array
   mapping,     // key to value; a JSON array of {"key", "value"}
   children,    // owned entities by key; a JSON object by the keys' text
   references,  // entities that live elsewhere, by key; a JSON array of the keys' text
};

template <class Owner, class T>
struct KeyMember {
   const char* name;
   T Owner::*member;
   Attr<Owner, void> attr;
};

template <class Owner, class T>
struct ScalarMember {
   const char* name;
   T Owner::*member;
   Attr<Owner, void> attr;
   void (*set)(Owner&, const T&);
};

template <class Owner, class Map, class Key, class Value>
struct CollectionMember {
   MemberKind kind;
   const char* name;
   Map Owner::*member;
   Attr<Owner, Key> attr;
   void (*remove)(Owner&, const Key&);
   // Values: writes one. Children: makes the member of a key, whatever the value; null when a
   // member cannot be made from its key alone.
   void (*write)(Owner&, const Key&, const Value&);
   // The key inside a value; null for a mapping and for entities.
   Key (*keyOf)(const Value&);
};

// `make` as the `write` of a collection of owned entities, if a member can be made from its key.
template <class Owner, class Key, class Pointer, class Make>
constexpr void (*makeWith(Make))(Owner&, const Key&, const Pointer&) {
   if constexpr (std::is_constructible_v<typename Pointer::element_type, const Key&>) {
      return [](Owner& owner, const Key& key, const Pointer&) { Make()(owner, key); };
   } else {
      return nullptr;
   }
}

// The sum, wrapping at the type's width also for signed types.
template <class T>
constexpr T wrapped(T a, T b) {
   using Unsigned = std::make_unsigned_t<T>;
   return static_cast<T>(
       static_cast<Unsigned>(static_cast<Unsigned>(a) + static_cast<Unsigned>(b)));
}

}  // namespace Rex
