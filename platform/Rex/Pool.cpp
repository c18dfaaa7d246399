#include "Rex/Pool.h"

#include <sys/mman.h>

#include <algorithm>
#include <array>
#include <bit>
#include <cstdlib>
#include <new>

#include "Rex/UnderAsan.h"

namespace Rex {
namespace {

constexpr std::size_t granule = 16;
constexpr std::size_t largest = 16 * 1024;

struct Block {
   Block* next;
};

// One list of free blocks for each multiple of the granule, and above `largest` for each power of
// two, cut from slabs that are never returned: what a busy hour needed, the next one finds ready.
struct State {
   std::array<Block*, largest / granule + 1> free{};
   std::array<Block*, 64> freePowers{};
   char* slab = nullptr;
   std::size_t left = 0;
   std::size_t slabs = 0;  // octets
   std::size_t inUse = 0;
};
State state;

#ifndef REX_UNDER_ASAN
// A process that stays small takes little; one with many ports and neighbours takes whole pages of
// the largest size, so that reaching a neighbour does not begin with a walk through page tables.
constexpr std::size_t smallSlab = 64 * 1024;
constexpr std::size_t smallSlabs = 4 * smallSlab;
constexpr std::size_t hugePage = 2 * 1024 * 1024;

// `size`: a power of two, or several huge pages.
char* pages(std::size_t size) {
   if (size < hugePage) return static_cast<char*>(::operator new(size));
   void* memory = ::operator new (size, std::align_val_t{hugePage});
   madvise(memory, size, MADV_HUGEPAGE);  // a wish; without it the pages serve as well
   return static_cast<char*>(memory);
}

// The list that a block of a size belongs to, and the size of its blocks.
struct Class {
   Block** list;
   std::size_t size;
};
Class classOf(std::size_t size) {
   if (size > largest) {
      std::size_t power = std::bit_ceil(size);
      return {&state.freePowers[static_cast<std::size_t>(std::countr_zero(power))], power};
   }
   std::size_t granules = std::max<std::size_t>(1, (size + granule - 1) / granule);
   return {&state.free[granules], granules * granule};
}

void give(Block** list, void* memory) {
   auto* block = static_cast<Block*>(memory);
   block->next = *list;
   *list = block;
}

void* cut(std::size_t size) {
   if (state.left < size) {
      // What is left of a slab is shorter than the block asked for; it serves a smaller one.
      while (state.left >= granule) {
         std::size_t rest = state.left > largest ? std::bit_floor(state.left) : state.left;
         give(classOf(rest).list, state.slab);
         state.slab += rest;
         state.left -= rest;
      }
      state.left = std::max(size, state.slabs < smallSlabs ? smallSlab : hugePage);
      state.slab = pages(state.left);
      state.slabs += state.left;
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
#ifdef REX_UNDER_ASAN
   // A sanitizer sees every block by itself, so that no use after free hides behind a reuse.
   return ::operator new(size);
#else
   Class blocks = classOf(size);
   if (Block* block = *blocks.list) {
      *blocks.list = block->next;
      return block;
   }
   return cut(blocks.size);
#endif
}

void Pool::release(void* memory, std::size_t size) noexcept {
   if (!memory) return;
   state.inUse -= size;
#ifdef REX_UNDER_ASAN
   ::operator delete(memory);
#else
   give(classOf(size).list, memory);
#endif
}

std::size_t Pool::inUse() noexcept {
   return state.inUse;
}

}  // namespace Rex
