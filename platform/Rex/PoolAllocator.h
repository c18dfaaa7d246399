// The standard containers' way to the pool.
#pragma once

#include <cstddef>

#include "Rex/Pool.h"

namespace Rex {

template <class T>
struct PoolAllocator {
   using value_type = T;
   PoolAllocator() = default;
   template <class U>
   PoolAllocator(const PoolAllocator<U>&) {}  // NOLINT(google-explicit-constructor)

   T* allocate(std::size_t n) { return static_cast<T*>(Pool::allocate(n * sizeof(T))); }
   void deallocate(T* memory, std::size_t n) noexcept { Pool::release(memory, n * sizeof(T)); }
   friend bool operator==(PoolAllocator, PoolAllocator) { return true; }
};

}  // namespace Rex
