// The one place where changes become handlers.
//
// The contract of notification:
// - A setter compares, stores, then notifies. An equal value notifies nobody. A stamp of an event
//   (REX_STAMP) notifies at every write.
// - Handlers run to completion and never nest.
// - A change made outside any handler is dispatched to its end before the mutator returns.
// - A change made inside a handler is queued as entity, attribute and key, once while pending, and
//   delivered in order after the handler's end, to the watchers that stand then. A machine that an
//   earlier change of the same reaction made thus sees the later ones.
// - What was asked for with onLast() runs when nothing else of the reaction waits, one change after
//   the other as reported, if it is still watched so. It shows the outcome to the world outside.
// - A change of an attribute that nobody watches when it is made queues nothing, unless its entity
//   was made in this reaction. It reads one word of the entity.
// - All of it stands when a handler adds or removes watchers, deletes its own machine, deletes the
//   entity that changed, or writes the same attribute again.
#pragma once

#include <cstdint>
#include <utility>
#include <vector>

#include "Rex/AnyKey.h"
#include "Rex/Ptr.h"

namespace Rex {

class Context;
class Entity;
class StateMachine;
struct Reaction;

// What a watcher of a whole entity is told.
struct Change {
   const Entity& entity;
   uint32_t attribute;  // the attribute's id, see Rex/Entity.h
   const AnyKey& key;   // has() for a key of a collection
};

class Dispatcher {
 public:
   // The number of the reaction that is running; no entity's birth equals `idle`.
   static constexpr uint32_t idle = 0;
   static inline uint32_t reaction = idle;

   // Called by mutators, after the value is stored.
   static void changed(Entity& entity, uint32_t attribute, AnyKey key = {});
   // Called at the delivery of a change whose handler is to run last.
   static void defer(StateMachine& machine, const Reaction& reaction, const Change& change);

   // Runs `f` as a handler, then delivers what it changed. The loop calls everything through here.
   // Inside a running reaction `f` simply becomes part of it.
   template <class F>
   static void run(F&& f) {
      if (running()) {
         std::forward<F>(f)();
         return;
      }
      Scope scope;
      std::forward<F>(f)();
      drain();
   }

   static bool running() { return reaction != idle; }
   // Whether a change of interest, of an attribute by its id, waits to be delivered.
   static bool anyPending(bool (*ofInterest)(const Entity&, uint32_t attribute));

 private:
   // A reaction's begin and end; the end also when a test's expected exception passes through.
   struct Scope {
      Scope();
      ~Scope();
   };
   static void drain();
};

}  // namespace Rex
