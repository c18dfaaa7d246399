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
   // Writes one value. Children: takes the entity, in place of one that stands. References: under
   // the entity's own key, whatever the one given.
   void (*write)(Owner&, const Key&, const Value&);
   // The key inside a value, or a reference's own key; null for a mapping and for children.
   Key (*keyOf)(const Value&);
};

// The sum, wrapping at the type's width also for signed types.
template <class T>
constexpr T wrapped(T a, T b) {
   using Unsigned = std::make_unsigned_t<T>;
   return static_cast<T>(
       static_cast<Unsigned>(static_cast<Unsigned>(a) + static_cast<Unsigned>(b)));
}

}  // namespace Rex
