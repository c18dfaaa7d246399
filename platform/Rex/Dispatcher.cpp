#include "Rex/Dispatcher.h"

#include <algorithm>
#include <boost/unordered/unordered_flat_set.hpp>

#include "Rex/Context.h"
#include "Rex/Entity.h"
#include "Rex/StateMachine.h"

namespace Rex {
namespace {

struct Pending {
   Ptr<Entity> entity;
   uint32_t attribute;
   AnyKey key;
};

struct Deferred {
   Ptr<StateMachine> machine;
   Reaction reaction;
   Ptr<const Entity> entity;
   uint32_t attribute;
   AnyKey key;

   // A machine that has closed watches nothing.
   bool isStillAskedFor(const Watchers& watchers) const {
      return std::ranges::any_of(watchers.list, [this](const Watcher& watcher) {
         return watcher.last && watcher.machine == machine.get() && watcher.attribute == attribute;
      });
   }
   void run() const {
      ContextScope scope(machine->context());
      reaction.run(*machine, reaction, {*entity, attribute, key});
   }
};

struct Identity {
   const Entity* entity;
   uint32_t attribute;
   size_t keyHash;
   size_t position;  // in the queue
   bool operator==(const Identity& other) const {
      return entity == other.entity && attribute == other.attribute && keyHash == other.keyHash;
   }
   friend size_t hash_value(const Identity& id) {
      size_t seed = reinterpret_cast<uintptr_t>(id.entity);
      boost::hash_combine(seed, id.attribute);
      boost::hash_combine(seed, id.keyHash);
      return seed;
   }
};

struct Queue {
   std::vector<Pending> changes;
   size_t next = 0;
   std::vector<Deferred> deferred;
   size_t nextDeferred = 0;
   boost::unordered_flat_set<Identity, boost::hash<Identity>> waiting;
   uint32_t lastReaction = Dispatcher::idle;

   void push(Entity& entity, uint32_t attribute, AnyKey key) {
      Identity id{&entity, attribute, key.hash(), changes.size()};
      auto [at, fresh] = waiting.insert(id);
      // Two keys of one hash are two changes all the same.
      if (!fresh && changes[at->position].key == key) return;
      changes.push_back({Ptr<Entity>(&entity), attribute, std::move(key)});
   }
   Pending pop() {
      Pending change = std::move(changes[next]);
      Identity id{change.entity.get(), change.attribute, change.key.hash(), next};
      auto at = waiting.find(id);
      if (at != waiting.end() && at->position == next) waiting.erase(at);
      ++next;
      return change;
   }
   void clear() {
      changes.clear();
      waiting.clear();
      deferred.clear();
      next = nextDeferred = 0;
   }
};
Queue queue;

}  // namespace

Dispatcher::Scope::Scope() {
   if (++queue.lastReaction == idle) ++queue.lastReaction;
   reaction = queue.lastReaction;
}

Dispatcher::Scope::~Scope() {
   queue.clear();
   reaction = idle;
}

void Dispatcher::changed(Entity& entity, uint32_t attribute, AnyKey key) {
   if (running()) {
      queue.push(entity, attribute, std::move(key));
      return;
   }
   Scope scope;
   queue.push(entity, attribute, std::move(key));
   drain();
}

void Dispatcher::defer(StateMachine& machine, const Reaction& reaction, const Change& change) {
   queue.deferred.push_back({Ptr<StateMachine>(&machine), reaction,
                             Ptr<const Entity>(&change.entity), change.attribute, change.key});
}

void Dispatcher::drain() {
   while (true) {
      if (queue.next < queue.changes.size()) {
         Pending change = queue.pop();
         change.entity->deliver(change.attribute, change.key);
      } else if (queue.nextDeferred < queue.deferred.size()) {
         Deferred deferred = std::move(queue.deferred[queue.nextDeferred++]);
         const auto& watchers = deferred.entity->watchers_;
         if (watchers && deferred.isStillAskedFor(*watchers)) deferred.run();
      } else {
         return;
      }
   }
}

bool Dispatcher::anyPending(bool (*ofInterest)(const Entity&, uint32_t attribute)) {
   auto waits = queue.changes.begin() + static_cast<std::ptrdiff_t>(queue.next);
   return std::any_of(waits, queue.changes.end(), [&](const Pending& change) {
      return ofInterest(*change.entity, change.attribute);
   });
}

}  // namespace Rex
