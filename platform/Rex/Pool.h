// Recycled memory for what comes and goes with every frame and neighbour: objects, texts and the
// storage of collections. In steady state a block that is freed serves the next request of its
// size, and the system's allocator is not called.
#pragma once

#include <cstddef>

namespace Rex {

class Pool {
 public:
   // `size` octets, aligned for any type.
   static void* allocate(std::size_t size);
   // Gives a block back; `size` is what was asked for.
   static void release(void* memory, std::size_t size) noexcept;
   // Octets now handed out, as asked for. Measured by the benchmarks.
   static std::size_t inUse() noexcept;
};

}  // namespace Rex
