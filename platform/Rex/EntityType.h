// The description of an entity type as the generic readers and writers see it: names, kinds, JSON
// both ways, and the way down a path. Made by REX_REGISTER (Rex/Register.h).
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "Rex/AnyKey.h"
#include "Rex/Entity.h"
#include "Rex/Json.h"

namespace Rex {

class Member {
 public:
   Member(std::string name, uint32_t id, MemberKind kind)
       : name(std::move(name)), id(id), kind(kind) {}
   virtual ~Member() = default;

   const std::string name;
   const uint32_t id;
   const MemberKind kind;

   virtual Json toJson(const Entity& entity) const = 0;
   // Reads and checks a new value without touching the entity, and returns what writes it. Throws
   // JsonError for a wrong value, and for a member that cannot be written as a whole.
   using Write = std::function<void(Entity&)>;
   virtual Write decode(const Json& json, const std::string& path) const;

   // For children and references: the member under a key's text, or null.
   virtual Ptr<Entity> child(const Entity& entity, std::string_view key) const;
   // For children: makes the member (or finds it); null when the text is no key or the type cannot
   // be made from its key alone.
   virtual Ptr<Entity> makeChild(Entity& entity, std::string_view key) const;
   // The type of what makeChild() makes; null where it makes nothing.
   virtual const EntityType* madeType() const;
   // For children: takes an entity made elsewhere, in place of one that stands. For references and
   // pointers: turns to it; a pointer also to null. False, and then nothing has changed, when the
   // text is no key, the entity is of another type, or its own key is another one.
   virtual bool put(Entity& entity, std::string_view key, const Ptr<Entity>& member) const;
   // For pointers: whether the holder may write what it points to, and so may be the one that owns
   // it. A pointer to a read-only view never is.
   virtual bool mayOwn() const;
   // For values and mappings: the JSON of one element (discarded when there is none), and what
   // decode() is for the whole.
   virtual Json elementToJson(const Entity& entity, std::string_view key) const;
   virtual Write decodeElement(std::string_view key, const Json& json,
                               const std::string& path) const;
   // For all collections: what is wrong with a text that is to be a key, in the form "expected ...,
   // got ..."; empty when it is one.
   virtual std::string keyFault(std::string_view key) const;
   // For all collections: removes a member; false when there is none.
   virtual bool removeKey(Entity& entity, std::string_view key) const;
   // The text of a key of this collection, as the queue of changes carries it.
   virtual std::string keyText(const AnyKey& key) const;
   // The way back, and the JSON of a key; without a value, discarded, when the text is none.
   virtual AnyKey anyKey(std::string_view text) const;
   virtual Json keyToJson(std::string_view text) const;
   // For all collections: the keys' texts, in the order of a walk.
   virtual std::vector<std::string> keys(const Entity& entity) const;
};

class EntityType {
 public:
   using Maker = std::function<Ptr<Entity>()>;
   // Takes the values of the type's keys, in order of declaration; throws JsonError.
   using KeyedMaker = std::function<Ptr<Entity>(const std::vector<Json>& keys)>;
   EntityType(std::string name, Maker maker, KeyedMaker keyedMaker,
              std::vector<std::unique_ptr<Member>> members);

   const std::string& name() const { return name_; }
   const std::vector<std::unique_ptr<Member>>& members() const { return members_; }
   const Member* member(std::string_view name) const;
   const Member* member(uint32_t id) const;

   // A new entity; null for a type that has a key and so is only made by its holder.
   Ptr<Entity> create() const { return maker_ ? maker_() : nullptr; }
   // The same from the values of its keys, one for each in order of declaration. Throws JsonError;
   // null for a type that is not made from them alone.
   Ptr<Entity> create(const std::vector<Json>& keys) const;
   // How many members are keys.
   size_t keys() const { return keys_; }
   // The type of that name, or null. A type is known once its library is loaded.
   static const EntityType* find(std::string_view name);

 private:
   std::string name_;
   Maker maker_;
   KeyedMaker keyedMaker_;
   size_t keys_ = 0;
   std::vector<std::unique_ptr<Member>> members_;
};

// The whole entity, its children to `depth` levels (deeper ones as empty objects).
Json entityToJson(const Entity& entity, int depth = 16);
// The same of one member.
Json memberToJson(const Member& member, const Entity& entity, int depth = 16);

// Reads and checks an object of attributes, and returns what writes them in its order. Throws
// JsonError, and then nothing has changed.
Member::Write decodeEntity(const EntityType& type, const Json& json, const std::string& path);

// The entity that `steps` lead to below `entity`: a member's name and a key, the name alone of a
// pointer, or in a directory the name of an entry. Null when some step leads nowhere.
Ptr<Entity> findBelow(const Ptr<Entity>& entity, const std::vector<std::string>& steps,
                      size_t from = 0);

}  // namespace Rex
