// The lines that declare an entity type:
//
//   struct LocalPort : Rex::Entity {
//      REX_ENTITY(LocalPort, Rex::Entity)
//      REX_KEY(Wirekit::IntfId, intfId)
//      REX_ATTRIBUTE(BoundedString255, portDesc)
//      REX_ENTITY_END()
//      explicit LocalPort(const Wirekit::IntfId& intfId) : intfId_(intfId) {}
//   };
//
// Each line declares the accessors, `<name>Attr` for watchers, and a description that is found
// through the number of its line; REX_REGISTER (Rex/Register.h) collects them in one source file.
#pragma once

#include "Rex/HashMap.h"
#include "Rex/Members.h"
#include "Rex/OrderedMap.h"

// Opens and closes a declaration. REX_ENTITY also gives `Ptr` and `PtrConst`.
#define REX_ENTITY(Type, Base)                                 \
 public:                                                       \
   using Self = Type;                                          \
   using RexBase = Base;                                       \
   using Ptr = ::Rex::Ptr<Type>;                               \
   using PtrConst = ::Rex::Ptr<Type const>;                    \
   static constexpr uint32_t rexDepth = RexBase::rexDepth + 1; \
   static constexpr int rexFirst = __LINE__;                   \
   static const ::Rex::EntityType& staticType();               \
   const ::Rex::EntityType& entityType() const override {      \
      return staticType();                                     \
   }

#define REX_ENTITY_END() \
 public:                 \
   static constexpr int rexLast = __LINE__;

#define REX_ATTR_(name, Key) \
   static constexpr ::Rex::Attr<Self, Key> name##Attr{rexDepth << 16 | uint32_t(__LINE__)};

// The entity's own key, fixed at construction. The constructor sets `name_`.
#define REX_KEY(Type, name)                                                   \
 public:                                                                      \
   const Type& name() const {                                                 \
      return name##_;                                                         \
   }                                                                          \
   REX_ATTR_(name, void)                                                      \
   static constexpr auto rexMember(::Rex::Line<__LINE__>) {                   \
      return ::Rex::KeyMember<Self, Type>{#name, &Self::name##_, name##Attr}; \
   }                                                                          \
                                                                              \
 private:                                                                     \
   Type name##_{};                                                            \
                                                                              \
 public:

#define REX_SCALAR_(Type, name, ...)                                        \
 public:                                                                    \
   const Type& name() const {                                               \
      return name##_;                                                       \
   }                                                                        \
   REX_ATTR_(name, void)                                                    \
   static constexpr auto rexMember(::Rex::Line<__LINE__>) {                 \
      return ::Rex::ScalarMember<Self, Type>{                               \
          #name, &Self::name##_, name##Attr,                                \
          [](Self& entity, const Type& value) { entity.name##Is(value); }}; \
   }                                                                        \
                                                                            \
 private:                                                                   \
   Type name##_{__VA_ARGS__};                                               \
                                                                            \
 public:

// A scalar: name(), nameIs(value). The default follows the name.
#define REX_ATTRIBUTE(Type, name, ...)  \
   REX_SCALAR_(Type, name, __VA_ARGS__) \
   void name##Is(const Type& value) {   \
      if (name##_ == value) return;     \
      name##_ = value;                  \
      rexChanged(name##Attr.id);        \
   }

// The time of an event: every write notifies, so that a coarse clock hides no event.
#define REX_STAMP(Type, name)         \
   REX_SCALAR_(Type, name)            \
   void name##Is(const Type& value) { \
      name##_ = value;                \
      rexChanged(name##Attr.id);      \
   }

// A counter: also nameInc(n), which returns the new value. It wraps at its width.
#define REX_COUNTER(Type, name)             \
   REX_ATTRIBUTE(Type, name)                \
   Type name##Inc(Type n) {                 \
      name##Is(::Rex::wrapped(name##_, n)); \
      return name##_;                       \
   }

#define REX_COLLECTION_(Map, Key, Value, name)                        \
 public:                                                              \
   const ::Rex::Map<Key, Value>& name() const {                       \
      return name##_;                                                 \
   }                                                                  \
   bool name##Has(const Key& key) const {                             \
      return name##_.find(key);                                       \
   }                                                                  \
   size_t name##s() const {                                           \
      return name##_.size();                                          \
   }                                                                  \
   void name##Del(const Key& key) {                                   \
      Key removed = key; /* the key may live in the member */         \
      if (name##_.erase(removed)) rexChanged(name##Attr.id, removed); \
   }                                                                  \
   void name##DelAll() {                                              \
      for (auto [key, value] : name##_) name##Del(key);               \
   }                                                                  \
   REX_ATTR_(name, Key)                                               \
                                                                      \
 private:                                                             \
   ::Rex::Map<Key, Value> name##_;                                    \
                                                                      \
 public:

// How the generic readers and writers see a collection.
#define REX_DESCRIBE_(kind, Map, Key, Value, name, write, keyOf)                \
   static constexpr auto rexMember(::Rex::Line<__LINE__>) {                     \
      return ::Rex::CollectionMember<Self, ::Rex::Map<Key, Value>, Key, Value>{ \
          ::Rex::MemberKind::kind,                                              \
          #name,                                                                \
          &Self::name##_,                                                       \
          name##Attr,                                                           \
          [](Self& entity, const Key& key) { entity.name##Del(key); },          \
          write,                                                                \
          keyOf};                                                               \
   }

// Values under a key: name(key) is the default value when the key is absent.
#define REX_MAP_(Map, Key, Value, name)                                       \
   REX_COLLECTION_(Map, Key, Value, name)                                     \
   Value name(const Key& key) const {                                         \
      const Value* found = name##_.find(key);                                 \
      return found ? *found : Value{};                                        \
   }                                                                          \
   void name##Is(const Key& key, const Value& value) {                        \
      if (const Value* old = name##_.find(key); old && *old == value) return; \
      name##_.insert(key, value);                                             \
      rexChanged(name##Attr.id, key);                                         \
   }
#define REX_WRITE_VALUE_(Key, Value, name) \
   [](Self& entity, const Key& key, const Value& value) { entity.name##Is(key, value); }

#define REX_MAPPING(Key, Value, name)     \
   REX_MAP_(OrderedMap, Key, Value, name) \
   REX_DESCRIBE_(mapping, OrderedMap, Key, Value, name, REX_WRITE_VALUE_(Key, Value, name), nullptr)

// Values that hold their key in the field `keyField`: nameIs(value).
#define REX_KEYED_VALUES_(Map, Value, name, Key, keyField)                          \
   REX_MAP_(Map, Key, Value, name)                                                  \
   void name##Is(const Value& value) {                                              \
      name##Is(value.keyField, value);                                              \
   }                                                                                \
   REX_DESCRIBE_(values, Map, Key, Value, name, REX_WRITE_VALUE_(Key, Value, name), \
                 [](const Value& value) -> Key { return value.keyField; })
#define REX_VALUES(Value, name, Key, keyField) \
   REX_KEYED_VALUES_(HashMap, Value, name, Key, keyField)
#define REX_ORDERED_VALUES(Value, name, Key, keyField) \
   REX_KEYED_VALUES_(OrderedMap, Value, name, Key, keyField)

#define REX_ENTITIES_(Type, name, Key)                   \
   REX_COLLECTION_(HashMap, Key, ::Rex::Ptr<Type>, name) \
   ::Rex::Ptr<Type> name(const Key& key) {               \
      const ::Rex::Ptr<Type>* found = name##_.find(key); \
      return found ? *found : ::Rex::Ptr<Type>();        \
   }                                                     \
   ::Rex::PtrToConst<Type> name(const Key& key) const {  \
      const ::Rex::Ptr<Type>* found = name##_.find(key); \
      return found ? *found : ::Rex::Ptr<Type>();        \
   }

// Entities that this one owns: nameIs(key, ...) makes the member from the arguments, or returns
// the one that stands. It is filled before its key is reported when the writer is a handler.
#define REX_CHILDREN(Type, name, Key)                                                        \
   REX_ENTITIES_(Type, name, Key)                                                            \
   template <class... Args>                                                                  \
   ::Rex::Ptr<Type> name##Is(const Key& key, Args&&... args) {                               \
      if (auto* found = name##_.find(key)) return *found;                                    \
      auto member = ::Rex::make<Type>(key, std::forward<Args>(args)...);                     \
      name##Take(key, member);                                                               \
      return member;                                                                         \
   }                                                                                         \
   REX_DESCRIBE_(children, HashMap, Key, ::Rex::Ptr<Type>, name, REX_TAKE_(Key, Type, name), \
                 nullptr)                                                                    \
 private:                                                                                    \
   void name##Take(const Key& key, const ::Rex::Ptr<Type>& member) {                         \
      member->bornIs();                                                                      \
      name##_.insert(key, member);                                                           \
      rexChanged(name##Attr.id, key);                                                        \
   }                                                                                         \
                                                                                             \
 public:
#define REX_TAKE_(Key, Type, name)                                    \
   [](Self& entity, const Key& key, const ::Rex::Ptr<Type>& member) { \
      entity.name##Take(key, member);                                 \
   }

// Entities that live elsewhere, under their own key `keyField()`: nameIs(pointer).
#define REX_POINTERS(Type, name, Key, keyField)                                                   \
   REX_ENTITIES_(Type, name, Key)                                                                 \
   void name##Is(const ::Rex::Ptr<Type>& member) {                                                \
      if (!member) ::Rex::throwMutatorArgNullPointerException(#name "Is");                        \
      if (auto* old = name##_.find(member->keyField()); old && *old == member) return;            \
      name##_.insert(member->keyField(), member);                                                 \
      rexChanged(name##Attr.id, member->keyField());                                              \
   }                                                                                              \
   REX_DESCRIBE_(                                                                                 \
       references, HashMap, Key, ::Rex::Ptr<Type>, name,                                          \
       [](Self& entity, const Key&, const ::Rex::Ptr<Type>& member) { entity.name##Is(member); }, \
       [](const ::Rex::Ptr<Type>& member) -> Key { return member->keyField(); })

// Owned entities of any type by name; what makes them stands in the source file.
#define REX_CHILDREN_OF_ANY_TYPE(name)                                                       \
   REX_ENTITIES_(::Rex::Entity, name, ::Rex::String)                                         \
   REX_DESCRIBE_(                                                                            \
       children, HashMap, ::Rex::String, ::Rex::Ptr<::Rex::Entity>, name,                    \
       [](Self& entity, const ::Rex::String& key, const ::Rex::Ptr<::Rex::Entity>& member) { \
          entity.name##Is(key, member);                                                      \
       },                                                                                    \
       nullptr)
