#include "Rex/Entity.h"

#include "Rex/Context.h"
#include "Rex/StateMachine.h"
#include "Rex/Watchers.h"

namespace Rex {

namespace {

// A look into the list, which is not shortened meanwhile; ends also when an exception passes.
struct Look {
   explicit Look(std::unique_ptr<Watchers>& watchers) : watchers(watchers) {
      ++watchers->deliveries;
   }
   ~Look() {
      if (--watchers->deliveries) return;
      std::erase_if(watchers->list, [](const Watcher& watcher) { return !watcher.machine; });
      if (watchers->list.empty()) watchers.reset();
   }
   std::unique_ptr<Watchers>& watchers;
};

}  // namespace

Entity::Entity() = default;
Entity::~Entity() = default;

void Entity::reckonHeard() const {
   heard_ = 0;
   if (!watchers_) return;
   for (const Watcher& watcher : watchers_->list) {
      if (watcher.machine) heard_ |= heardBit(watcher.attribute);
   }
}

void Entity::deliver(uint32_t attribute, const AnyKey& key) {
   if (!watchers_) return;
   Watchers& watchers = *watchers_;
   Change change{*this, attribute, key};
   Look look(watchers_);
   // Watchers that a handler adds now have read the new value already.
   size_t standing = watchers.list.size();
   for (size_t i = 0; i < standing; ++i) {
      Watcher watcher = watchers.list[i];
      if (!watcher.machine || (watcher.attribute && watcher.attribute != attribute)) continue;
      // One that is being destroyed hears nothing more, not even of what its members' end changes.
      if (!watcher.machine->references()) continue;
      if (watcher.last) {
         Dispatcher::defer(*watcher.machine, watcher.reaction, change);
         continue;
      }
      // The machine may delete itself, and the list may grow, while the handler runs.
      Ptr<StateMachine> machine(watcher.machine);
      ContextScope scope(machine->context());
      watcher.reaction.run(*machine, watcher.reaction, change);
   }
}

}  // namespace Rex
