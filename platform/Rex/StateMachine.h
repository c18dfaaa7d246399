// Base of every state machine (a class whose name ends in `Sm`). Its constructor begins with the
// table of its reactions, one line for each watched attribute, and ends with handleInitialized():
//
//   on(portConfig_, PortConfig::adminStatusAttr, &LldpPamSm::handleAdminStatus);
//   on(portStatus_, PortStatus::remoteSystemAttr, &LldpPamSm::handleRemoteSystem);  // with the key
//   on(txClock_, &LldpPamSm::handleTxClock);
//
// Attaching runs no handler. An entity that was not handed to the machine (null) has no reactor.
#pragma once

#include <cstring>
#include <functional>
#include <type_traits>
#include <vector>

#include "Rex/Entity.h"
#include "Rex/HashMap.h"
#include "Rex/Ptr.h"
#include "Rex/Timer.h"
#include "Rex/Watchers.h"

namespace Rex {

class Context;

class StateMachine : public PtrInterface {
 public:
   StateMachine();
   ~StateMachine() override;

   // Ends the machine: no reactor and no timer of it runs from here on, then doClose() runs. An
   // owner closes before it lets go; a second call finds nothing left to do.
   void close();
   bool closed() const { return closed_; }

   // The context that the machine was made in; its handlers run in it.
   Context& context() const { return context_; }

 protected:
   // Tear-down of the machine. It may also be called earlier, and a second run must find nothing
   // left to do.
   virtual void doClose() {}

   template <class E, class Owner, class Key, class Sm>
   void on(const Ptr<E>& entity, Attr<Owner, Key> attribute, void (Sm::*handler)()) {
      static_assert(std::is_base_of_v<Owner, E>, "the attribute belongs to another entity");
      watch(entity.get(), attribute.id,
            reaction(handler, [](Sm& self, auto method, const Change&) { (self.*method)(); }));
   }
   template <class E, class Owner, class Key, class Sm, class Argument>
   void on(const Ptr<E>& entity, Attr<Owner, Key> attribute, void (Sm::*handler)(Argument)) {
      static_assert(std::is_base_of_v<Owner, E>, "the attribute belongs to another entity");
      static_assert(!std::is_void_v<Key>, "a scalar has no key to hand over");
      watch(entity.get(), attribute.id,
            reaction(handler, [](Sm& self, auto method, const Change& change) {
               (self.*method)(change.key.as<Key>());
            }));
   }
   // The same, when nothing else of the reaction waits (Rex/Dispatcher.h).
   template <class E, class Owner, class Key, class Sm>
   void onLast(const Ptr<E>& entity, Attr<Owner, Key> attribute, void (Sm::*handler)(Key)) {
      static_assert(std::is_base_of_v<Owner, E>, "the attribute belongs to another entity");
      watch(entity.get(), attribute.id,
            reaction(handler, [](Sm& self, auto method,
                                 const Change& change) { (self.*method)(change.key.as<Key>()); }),
            true);
   }
   // With the change itself, for a machine that watches many entities of one type.
   template <class E, class Owner, class Key, class Sm>
   void on(const Ptr<E>& entity, Attr<Owner, Key> attribute, void (Sm::*handler)(const Change&)) {
      static_assert(std::is_base_of_v<Owner, E>, "the attribute belongs to another entity");
      watch(entity.get(), attribute.id, reaction(handler, handOver));
   }
   // Every change of an entity; for readers that are generic over the description.
   template <class Sm>
   void onAny(const Ptr<const Entity>& entity, void (Sm::*handler)(const Change&)) {
      watch(entity.get(), 0, reaction(handler, handOver));
   }
   template <class Sm>
   void on(Timer& timer, void (Sm::*handler)()) {
      auto* self = static_cast<Sm*>(this);
      own(timer, [self, handler] { (self->*handler)(); });
   }

   // Stops watching one entity, for a machine that turns to another.
   void unwatch(const Ptr<const Entity>& entity);

 private:
   static constexpr auto handOver = [](auto& self, auto method, const Change& change) {
      (self.*method)(change);
   };
   // `run` has no state of its own: what differs between two reactions is the method alone.
   template <class Sm, class... Arguments, class Run>
   static Reaction reaction(void (Sm::*method)(Arguments...), Run) {
      using Method = void (Sm::*)(Arguments...);
      static_assert(sizeof(Method) <= sizeof(Reaction::handler));
      Reaction made;
      std::memcpy(made.handler, &method, sizeof(Method));
      made.run = [](StateMachine& machine, const Reaction& self, const Change& change) {
         Method handler;
         std::memcpy(&handler, self.handler, sizeof(Method));
         Run()(static_cast<Sm&>(machine), handler, change);
      };
      return made;
   }
   void watch(const Entity* entity, uint32_t attribute, const Reaction& reaction,
              bool last = false);
   void own(Timer& timer, std::function<void()> run);
   void detach(const Entity& entity);

   Context& context_;
   HashMap<const Entity*, Ptr<const Entity>> watched_;
   std::vector<Timer*> timers_;
   bool closed_ = false;
};

}  // namespace Rex
