// Who watches an entity. Internal to the framework.
#pragma once

#include <cstdint>
#include <vector>

#include "Rex/Dispatcher.h"
#include "Rex/PoolAllocator.h"

namespace Rex {

class StateMachine;

// A machine's handler, type-erased and copied without allocating.
struct Reaction {
   void (*run)(StateMachine&, const Reaction&, const Change&) = nullptr;
   alignas(void*) unsigned char handler[2 * sizeof(void*)]{};  // the pointer to member
};

struct Watcher {
   uint32_t attribute;     // 0: every attribute
   bool last;              // when all else of the reaction is delivered
   StateMachine* machine;  // null: removed while a delivery was on
   Reaction reaction;
};

struct Watchers {
   std::vector<Watcher, PoolAllocator<Watcher>> list;
   uint32_t deliveries = 0;  // nested looks into the list; it is not shortened meanwhile

   static void* operator new(std::size_t size) { return Pool::allocate(size); }
   static void operator delete(void* memory, std::size_t size) { Pool::release(memory, size); }
};

}  // namespace Rex
