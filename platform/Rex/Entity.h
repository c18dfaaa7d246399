// Entities: reference-counted objects with typed attributes and keyed collections that can be
// watched. A type is declared line by line (Rex/Declare.h); the lines alone give its accessors,
// its printed form, JSON in both directions and its place in the management API.
#pragma once

#include <cstdint>
#include <memory>
#include <type_traits>

#include "Rex/AnyKey.h"
#include "Rex/Dispatcher.h"
#include "Rex/Ptr.h"

namespace Rex {

class EntityType;
class StateMachine;
struct Watchers;

// Identity of an attribute: the type that declares it, the type of its collection's key (void for
// a scalar), and a number that is unique within the type and grows in the order of declaration.
template <class Owner, class Key = void>
struct Attr {
   uint32_t id;
};

class Entity : public PtrInterface {
 public:
   static constexpr uint32_t rexDepth = 0;

   Entity();
   ~Entity() override;

   // The description of the most derived type.
   virtual const EntityType& entityType() const = 0;

   // Marks the entity as made in the present reaction: its changes are queued for watchers that
   // do not stand yet. Holders call this when they take a new member.
   void bornIs() { born_ = Dispatcher::reaction; }

 protected:
   // Called by mutators after the value is stored.
   void rexChanged(uint32_t attribute) {
      if (heard(attribute)) [[unlikely]]
         Dispatcher::changed(*this, attribute);
   }
   template <class K>
   void rexChanged(uint32_t attribute, const K& key) {
      if (heard(attribute)) [[unlikely]]
         Dispatcher::changed(*this, attribute, AnyKey(key));
   }

 private:
   friend class Dispatcher;
   friend class StateMachine;

   // Attributes of one entity stand on successive lines, so that few of them share a bit.
   static constexpr uint64_t heardBit(uint32_t attribute) {
      return attribute ? uint64_t{1} << (attribute & 63) : ~uint64_t{0};  // 0: every attribute
   }
   bool heard(uint32_t attribute) const {
      return (heard_ & heardBit(attribute)) ||
             (born_ == Dispatcher::reaction && born_ != Dispatcher::idle);
   }
   void reckonHeard() const;
   void deliver(uint32_t attribute, const AnyKey& key);

   // Watching does not change what is watched: read-only views can be watched too.
   mutable std::unique_ptr<Watchers> watchers_;
   mutable uint64_t heard_ = 0;  // the bits of the attributes that are watched
   uint32_t born_ = Dispatcher::idle;
};

}  // namespace Rex

#include "Rex/Declare.h"  // IWYU pragma: export
