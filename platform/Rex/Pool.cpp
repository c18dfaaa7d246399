#include "Rex/Pool.h"

#include <sys/mman.h>

#include <array>
#include <cstdlib>
#include <new>

#if defined(__SANITIZE_ADDRESS__)
#define REX_POOL_OFF 1
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define REX_POOL_OFF 1
#endif
#endif

namespace Rex {
namespace {

constexpr std::size_t granule = 16;
constexpr std::size_t largest = 16 * 1024;

struct Block {
   Block* next;
};

// One list of free blocks for each multiple of the granule, cut from slabs that are never
// returned: what a busy hour needed, the next one finds ready.
struct State {
   std::array<Block*, largest / granule + 1> free{};
   char* slab = nullptr;
   std::size_t left = 0;
   std::size_t inUse = 0;
};
State state;

#ifndef REX_POOL_OFF
// A process that stays small takes little; one with many neighbours takes whole pages of the
// largest size, so that reaching a neighbour does not begin with a walk through page tables.
constexpr std::size_t smallSlab = 64 * 1024;
constexpr std::size_t hugePage = 2 * 1024 * 1024;

std::size_t slabSize() {
   return state.inUse < hugePage ? smallSlab : hugePage;
}

char* newSlab(std::size_t size) {
   if (size < hugePage) return static_cast<char*>(::operator new(size));
   void* slab = ::operator new (size, std::align_val_t{hugePage});
   madvise(slab, size, MADV_HUGEPAGE);  // a wish; without it the slab serves as well
   return static_cast<char*>(slab);
}

void* cut(std::size_t size) {
   if (state.left < size) {
      // What is left of a slab is shorter than the block asked for; it serves a smaller one.
      if (state.left >= granule) {
         auto* rest = reinterpret_cast<Block*>(state.slab);
         rest->next = state.free[state.left / granule];
         state.free[state.left / granule] = rest;
      }
      state.left = slabSize();
      state.slab = newSlab(state.left);
   }
   void* block = state.slab;
   state.slab += size;
   state.left -= size;
   return block;
}
#endif

}  // namespace

void* Pool::allocate(std::size_t size) {
   state.inUse += size;
#ifdef REX_POOL_OFF
   // A sanitizer sees every block by itself, so that no use after free hides behind a reuse.
   return ::operator new(size);
#else
   if (size > largest) return ::operator new(size);
   std::size_t list = (size + granule - 1) / granule;
   if (list == 0) list = 1;
   if (Block* block = state.free[list]) {
      state.free[list] = block->next;
      return block;
   }
   return cut(list * granule);
#endif
}

void Pool::release(void* memory, std::size_t size) noexcept {
   if (!memory) return;
   state.inUse -= size;
#ifdef REX_POOL_OFF
   ::operator delete(memory);
#else
   if (size > largest) {
      ::operator delete(memory);
      return;
   }
   std::size_t list = (size + granule - 1) / granule;
   if (list == 0) list = 1;
   auto* block = static_cast<Block*>(memory);
   block->next = state.free[list];
   state.free[list] = block;
#endif
}

std::size_t Pool::inUse() noexcept {
   return state.inUse;
}

}  // namespace Rex
