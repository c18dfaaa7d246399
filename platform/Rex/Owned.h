// Owned state machines. The owner's pointer is set after the machine's construction, and the
// machine is closed before the pointer is cleared.
//
//   REX_MACHINE(InputSm, inputSm)                      inputSm(), inputSmIs(...), inputSmDel()
//   REX_MACHINES(LldpPamSm, lldpPamSm, Wirekit::IntfId)   the same by key, and lldpPamSmHas(key)
#pragma once

#include <utility>

#include "Rex/Assert.h"
#include "Rex/HashMap.h"
#include "Rex/Ptr.h"

namespace Rex {

template <class Sm>
class OwnedMachine {
 public:
   OwnedMachine() = default;
   OwnedMachine(const OwnedMachine&) = delete;
   OwnedMachine& operator=(const OwnedMachine&) = delete;
   ~OwnedMachine() { reset(); }

   const Ptr<Sm>& get() const { return machine_; }
   template <class... Args>
   const Ptr<Sm>& make(Args&&... args) {
      reset();
      machine_ = Rex::make<Sm>(std::forward<Args>(args)...);
      return machine_;
   }
   // The pointer still stands while the machine closes: its closing logic may look for it.
   void reset() {
      if (!machine_) return;
      Ptr<Sm> last = machine_;
      last->close();
      if (machine_ == last) machine_ = nullptr;  // what its closing set off may have made a new one
   }

 private:
   Ptr<Sm> machine_;
};

template <class Sm, class Key>
class OwnedMachines {
 public:
   OwnedMachines() = default;
   OwnedMachines(const OwnedMachines&) = delete;
   OwnedMachines& operator=(const OwnedMachines&) = delete;
   ~OwnedMachines() { clear(); }

   const HashMap<Key, Ptr<Sm>>& all() const { return machines_; }
   Ptr<Sm> get(const Key& key) const {
      const Ptr<Sm>* found = machines_.find(key);
      return found ? *found : Ptr<Sm>();
   }
   // `key` must have no machine.
   template <class... Args>
   Ptr<Sm> make(const Key& key, Args&&... args) {
      REX_ASSERT(!machines_.find(key));
      Ptr<Sm> machine = Rex::make<Sm>(std::forward<Args>(args)...);
      machines_.insert(key, machine);
      return machine;
   }
   void erase(const Key& key) {
      Key removed = key;
      Ptr<Sm> last = get(removed);
      if (!last) return;
      last->close();
      if (get(removed) == last) machines_.erase(removed);
   }
   void clear() {
      for (auto [key, machine] : machines_) erase(key);
   }

 private:
   HashMap<Key, Ptr<Sm>> machines_;
};

}  // namespace Rex

#define REX_MACHINE(Sm, name)                           \
 public:                                                \
   const ::Rex::Ptr<Sm>& name() const {                 \
      return name##_.get();                             \
   }                                                    \
   template <class... Args>                             \
   const ::Rex::Ptr<Sm>& name##Is(Args&&... args) {     \
      return name##_.make(std::forward<Args>(args)...); \
   }                                                    \
   void name##Del() {                                   \
      name##_.reset();                                  \
   }                                                    \
                                                        \
 private:                                               \
   ::Rex::OwnedMachine<Sm> name##_;                     \
                                                        \
 public:

#define REX_MACHINES(Sm, name, Key)                          \
 public:                                                     \
   const ::Rex::HashMap<Key, ::Rex::Ptr<Sm>>& name() const { \
      return name##_.all();                                  \
   }                                                         \
   ::Rex::Ptr<Sm> name(const Key& key) const {               \
      return name##_.get(key);                               \
   }                                                         \
   bool name##Has(const Key& key) const {                    \
      return name##_.all().find(key);                        \
   }                                                         \
   template <class... Args>                                  \
   ::Rex::Ptr<Sm> name##Is(const Key& key, Args&&... args) { \
      return name##_.make(key, std::forward<Args>(args)...); \
   }                                                         \
   void name##Del(const Key& key) {                          \
      name##_.erase(key);                                    \
   }                                                         \
                                                             \
 private:                                                    \
   ::Rex::OwnedMachines<Sm, Key> name##_;                    \
                                                             \
 public:
