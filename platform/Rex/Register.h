// REX_REGISTER(Namespace::Type) in one source file makes the description of an entity type from
// the lines of its declaration. Included by those source files only: it instantiates the JSON of
// every member.
#pragma once

#include <memory>
#include <set>
#include <tuple>
#include <utility>
#include <vector>

#include "Rex/EntityType.h"

namespace Rex::detail {

template <class T>
inline constexpr bool isPtr = false;
template <class T>
inline constexpr bool isPtr<Ptr<T>> = true;
template <class T>
using Pointee = std::remove_const_t<typename T::element_type>;

template <class Owner>
const Owner& in(const Entity& entity) {
   return static_cast<const Owner&>(entity);
}
template <class Owner>
Owner& in(Entity& entity) {
   return static_cast<Owner&>(entity);
}
// What is read generically may be watched and walked, whichever view it came through.
template <class T>
Ptr<Entity> asEntity(const Ptr<T>& p) {
   return Ptr<Entity>(const_cast<Pointee<Ptr<T>>*>(p.get()));
}

template <class Owner, class T>
struct KeyOf : Member {
   KeyOf(KeyMember<Owner, T> m) : Member(m.name, m.attr.id, MemberKind::key), at(m.member) {}
   Json toJson(const Entity& e) const override { return Rex::toJson(in<Owner>(e).*at); }
   Write decode(const Json&, const std::string& path) const override {
      throw JsonError(path, "is the key and stays as it is");
   }
   T Owner::*at;
};

// Reads a value in its own JSON: also the default of one that has a part without a JSON to be read,
// an enumeration that has no name for zero.
template <class T>
T fromOwnJson(const Json& json, const std::string& path) {
   T value{};
   if constexpr (DescribedStruct<T>) {
      try {
         fromJson(json, value, path);
      } catch (const JsonError&) {
         if (json != Rex::toJson(T{})) throw;
         value = T{};
      }
   } else {
      fromJson(json, value, path);
   }
   return value;
}

// Writes go through the setter, found through the member's own write function.
template <class Owner, class T>
struct ScalarOf : Member {
   using Setter = void (*)(Owner&, const T&);
   ScalarOf(ScalarMember<Owner, T> m)
       : Member(m.name, m.attr.id, MemberKind::scalar), at(m.member), set(m.set) {}
   Json toJson(const Entity& e) const override { return Rex::toJson(in<Owner>(e).*at); }
   Write decode(const Json& json, const std::string& path) const override {
      T value{};
      fromJson(json, value, path);
      return [set = set, value](Entity& e) { set(in<Owner>(e), value); };
   }
   // The one element of a scalar is its value as toJson() gives it, whatever that is.
   Write decodeElement(std::string_view, const Json& json, const std::string& path) const override {
      return
          [set = set, value = fromOwnJson<T>(json, path)](Entity& e) { set(in<Owner>(e), value); };
   }
   T Owner::*at;
   Setter set;
};

template <class Owner, class T>
struct PointerOf : Member {
   PointerOf(ScalarMember<Owner, T> m)
       : Member(m.name, m.attr.id, MemberKind::pointer), at(m.member), set(m.set) {}
   Json toJson(const Entity& e) const override {
      if (!(in<Owner>(e).*at)) return Json();
      if constexpr (std::is_base_of_v<Entity, Pointee<T>>) {
         return (in<Owner>(e).*at)->entityType().name();
      } else {
         return "object";
      }
   }
   Ptr<Entity> child(const Entity& e, std::string_view) const override {
      if constexpr (std::is_base_of_v<Entity, Pointee<T>>) return asEntity(in<Owner>(e).*at);
      return nullptr;
   }
   bool put(Entity& e, std::string_view, const Ptr<Entity>& target) const override {
      if constexpr (std::is_base_of_v<Entity, Pointee<T>>) {
         T typed(dynamic_cast<Pointee<T>*>(target.get()));
         if (target && !typed) return false;
         set(in<Owner>(e), typed);
         return true;
      }
      return false;
   }
   bool mayOwn() const override { return !std::is_const_v<typename T::element_type>; }
   T Owner::*at;
   void (*set)(Owner&, const T&);
};

template <class Owner, class Map, class Key, class Value>
struct CollectionOf : Member {
   using Described = CollectionMember<Owner, Map, Key, Value>;
   CollectionOf(Described m) : Member(m.name, m.attr.id, m.kind), at(m.member), described(m) {}

   Json toJson(const Entity& e) const override {
      Json array = Json::array();
      for (auto [key, value] : in<Owner>(e).*at) {
         if constexpr (isPtr<Value>) {
            array.push_back(keyToText(key));
         } else if (kind == MemberKind::mapping) {
            array.push_back(Json{{"key", Rex::toJson(key)}, {"value", Rex::toJson(value)}});
         } else {
            array.push_back(Rex::toJson(value));
         }
      }
      return array;
   }
   Write decode(const Json& json, const std::string& path) const override {
      if constexpr (isPtr<Value>) {
         return Member::decode(json, path);
      } else {
         return decodeValues(json, path);
      }
   }
   Ptr<Entity> child(const Entity& e, std::string_view text) const override {
      if constexpr (isPtr<Value>) {
         Key key{};
         if (!keyFromText(text, key)) return nullptr;
         const Value* found = (in<Owner>(e).*at).find(key);
         if (found) return asEntity(*found);
      }
      return nullptr;
   }
   Ptr<Entity> makeChild(Entity& e, std::string_view text) const override {
      if constexpr (madeFromKey) {
         Key key{};
         if (kind != MemberKind::children || !keyFromText(text, key)) return nullptr;
         if (auto standing = child(e, text)) return standing;
         auto member = make<Pointee<Value>>(std::as_const(key));
         described.write(in<Owner>(e), key, member);
         return member;
      }
      return nullptr;
   }
   const EntityType* madeType() const override {
      if constexpr (madeFromKey) {
         if (kind == MemberKind::children) return &Pointee<Value>::staticType();
      }
      return nullptr;
   }
   bool put(Entity& e, std::string_view text, const Ptr<Entity>& member) const override {
      if constexpr (isPtr<Value>) {
         Key key{};
         Value typed(dynamic_cast<Pointee<Value>*>(member.get()));
         if (!typed || !keyFromText(text, key)) return false;
         if (described.keyOf && described.keyOf(typed) != key) return false;
         described.write(in<Owner>(e), key, typed);
         return true;
      }
      return false;
   }
   Json elementToJson(const Entity& e, std::string_view text) const override {
      if constexpr (!isPtr<Value>) {
         Key key{};
         if (keyFromText(text, key)) {
            if (const Value* found = (in<Owner>(e).*at).find(key)) return Rex::toJson(*found);
         }
      }
      return Json(Json::value_t::discarded);
   }
   Write decodeElement(std::string_view text, const Json& json,
                       const std::string& path) const override {
      if constexpr (!isPtr<Value>) {
         Key key{};
         Value value{};
         readKey(text, key);
         fromJson(json, value, path);
         if (described.keyOf && described.keyOf(value) != key) {
            throw JsonError(path, "expected a value of the key " + keyToText(key));
         }
         return [this, key, value](Entity& e) { described.write(in<Owner>(e), key, value); };
      }
      return Member::decodeElement(text, json, path);
   }
   std::string keyFault(std::string_view text) const override { return keyTextFault<Key>(text); }
   bool removeKey(Entity& e, std::string_view text) const override {
      Key key{};
      if (!keyFromText(text, key) || !(in<Owner>(e).*at).find(key)) return false;
      described.remove(in<Owner>(e), key);
      return true;
   }
   std::string keyText(const AnyKey& key) const override { return keyToText(key.as<Key>()); }
   AnyKey anyKey(std::string_view text) const override {
      Key key{};
      return keyFromText(text, key) ? AnyKey(key) : AnyKey();
   }
   Json keyToJson(std::string_view text) const override {
      Key key{};
      return keyFromText(text, key) ? Rex::toJson(key) : Json(Json::value_t::discarded);
   }
   std::vector<std::string> keys(const Entity& e) const override {
      std::vector<std::string> texts;
      for (auto [key, value] : in<Owner>(e).*at) texts.push_back(keyToText(key));
      return texts;
   }

 private:
   static constexpr bool madeFromKey = [] {
      if constexpr (isPtr<Value>) {
         return std::is_constructible_v<Pointee<Value>, const Key&> &&
                !std::is_abstract_v<Pointee<Value>>;
      }
      return false;
   }();
   // The array becomes the collection's content: what it does not name goes, then each is written.
   Write decodeValues(const Json& json, const std::string& path) const {
      if (!json.is_array()) expected(json, path, "an array");
      std::vector<std::pair<Key, Value>> members;
      std::set<Key> keys;
      for (size_t i = 0; i < json.size(); ++i) {
         std::string place = elementPath(path, i);
         Key key{};
         Value value{};
         if (kind == MemberKind::mapping) {
            if (!json[i].is_object() || !json[i].contains("key") || !json[i].contains("value")) {
               expected(json[i], place, "an object with key and value");
            }
            fromJson(json[i]["key"], key, fieldPath(place, "key"));
            fromJson(json[i]["value"], value, fieldPath(place, "value"));
         } else {
            fromJson(json[i], value, place);
            key = described.keyOf(value);
         }
         if (!keys.insert(key).second) {
            throw JsonError(place, "there is one before it with the key " + keyToText(key));
         }
         members.emplace_back(key, value);
      }
      return [this, members, keys](Entity& e) {
         for (auto [key, value] : in<Owner>(e).*at) {
            if (!keys.contains(key)) described.remove(in<Owner>(e), key);
         }
         for (const auto& [key, value] : members) described.write(in<Owner>(e), key, value);
      };
   }
   Map Owner::*at;
   Described described;
};

template <class Owner, class T>
std::unique_ptr<Member> describe(KeyMember<Owner, T> m) {
   return std::make_unique<KeyOf<Owner, T>>(m);
}
template <class Owner, class T>
std::unique_ptr<Member> describe(ScalarMember<Owner, T> m) {
   if constexpr (isPtr<T>) {
      return std::make_unique<PointerOf<Owner, T>>(m);
   } else {
      return std::make_unique<ScalarOf<Owner, T>>(m);
   }
}
template <class Owner, class Map, class Key, class Value>
std::unique_ptr<Member> describe(CollectionMember<Owner, Map, Key, Value> m) {
   return std::make_unique<CollectionOf<Owner, Map, Key, Value>>(m);
}

template <class T, int line>
void describeLine(std::vector<std::unique_ptr<Member>>& members) {
   if constexpr (requires { T::rexMember(Line<line>()); }) {
      members.push_back(describe(T::rexMember(Line<line>())));
   }
}
template <class T, int... offsets>
void describeLines(std::vector<std::unique_ptr<Member>>& members,
                   std::integer_sequence<int, offsets...>) {
   (describeLine<T, T::rexFirst + offsets>(members), ...);
}
// A base's members come first.
template <class T>
void describeType(std::vector<std::unique_ptr<Member>>& members) {
   if constexpr (!std::is_same_v<T, Entity>) {
      describeType<typename T::RexBase>(members);
      describeLines<T>(members, std::make_integer_sequence<int, T::rexLast - T::rexFirst + 1>());
   }
}

// The types of an entity's keys, a base's first.
template <class Owner, class T>
boost::mp11::mp_list<T> keysOf(KeyMember<Owner, T>);
template <class Other>
boost::mp11::mp_list<> keysOf(Other);
template <class T, int line>
auto lineKeys() {
   if constexpr (requires { T::rexMember(Line<line>()); }) {
      return decltype(keysOf(T::rexMember(Line<line>())))();
   } else {
      return boost::mp11::mp_list<>();
   }
}
template <class T, int... offsets>
auto linesKeys(std::integer_sequence<int, offsets...>) {
   return boost::mp11::mp_append<decltype(lineKeys<T, T::rexFirst + offsets>())...>();
}
template <class T>
auto typeKeys() {
   if constexpr (std::is_same_v<T, Entity>) {
      return boost::mp11::mp_list<>();
   } else {
      using Lines = std::make_integer_sequence<int, T::rexLast - T::rexFirst + 1>;
      return boost::mp11::mp_append<decltype(typeKeys<typename T::RexBase>()),
                                    decltype(linesKeys<T>(Lines()))>();
   }
}
template <class T, class... Keys>
EntityType::KeyedMaker keyedMaker(boost::mp11::mp_list<Keys...>) {
   if constexpr (sizeof...(Keys) && std::is_constructible_v<T, const Keys&...> &&
                 !std::is_abstract_v<T>) {
      return [](const std::vector<Json>& json) {
         std::tuple<Keys...> keys;
         size_t next = 0;
         return std::apply(
             [&](auto&... key) {
                (fromJson(json.at(next++), key, "key"), ...);
                return Ptr<Entity>(make<T>(std::as_const(key)...));
             },
             keys);
      };
   }
   return nullptr;
}

template <class T>
EntityType makeType(const char* name) {
   std::vector<std::unique_ptr<Member>> members;
   describeType<T>(members);
   EntityType::Maker maker;
   if constexpr (std::is_default_constructible_v<T> && !std::is_abstract_v<T>) {
      maker = [] { return Ptr<Entity>(make<T>()); };
   }
   return EntityType(name, std::move(maker), keyedMaker<T>(typeKeys<T>()), std::move(members));
}

}  // namespace Rex::detail

#define REX_REGISTER(Type)                                                              \
   const ::Rex::EntityType& Type::staticType() {                                        \
      static const ::Rex::EntityType& type =                                            \
          *new ::Rex::EntityType(::Rex::detail::makeType<Type>(#Type));                 \
      return type;                                                                      \
   }                                                                                    \
   namespace {                                                                          \
   [[maybe_unused]] const ::Rex::EntityType& REX_PASTE_(registered,                     \
                                                        __LINE__) = Type::staticType(); \
   }
#define REX_PASTE_(a, b) REX_PASTE2_(a, b)
#define REX_PASTE2_(a, b) a##b
