#include "Rex/StateMachine.h"

#include "Rex/Context.h"

namespace Rex {

StateMachine::StateMachine() : context_(Context::current()) {}

StateMachine::~StateMachine() {
   // An owner that did not close leaves at least no reactor behind.
   for (auto [entity, owned] : watched_) detach(*entity);
}

void StateMachine::close() {
   if (closed_) return;
   closed_ = true;
   for (auto [entity, owned] : watched_) {
      detach(*entity);
      watched_.erase(entity);
   }
   for (Timer* timer : timers_) timer->cancel();
   timers_.clear();
   doClose();
}

void StateMachine::watch(const Entity* entity, uint32_t attribute, const Reaction& reaction,
                         bool last) {
   if (!entity || closed_) return;
   if (!entity->watchers_) entity->watchers_ = std::make_unique<Watchers>();
   entity->watchers_->list.push_back({attribute, last, this, reaction});
   entity->reckonHeard();
   if (!watched_.find(entity)) watched_.insert(entity, Ptr<const Entity>(entity));
}

void StateMachine::unwatch(const Ptr<const Entity>& entity) {
   if (!watched_.find(entity.get())) return;
   detach(*entity);
   watched_.erase(entity.get());
}

void StateMachine::own(Timer& timer, std::function<void()> run) {
   timer.handlerIs(this, std::move(run));
   timers_.push_back(&timer);
}

void StateMachine::detach(const Entity& entity) {
   if (!entity.watchers_) return;
   Watchers& watchers = *entity.watchers_;
   for (Watcher& watcher : watchers.list) {
      if (watcher.machine == this) watcher.machine = nullptr;
   }
   entity.reckonHeard();
   if (watchers.deliveries) return;
   std::erase_if(watchers.list, [](const Watcher& watcher) { return !watcher.machine; });
   if (watchers.list.empty()) entity.watchers_.reset();
}

}  // namespace Rex
