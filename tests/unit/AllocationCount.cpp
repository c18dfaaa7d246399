#include "support/AllocationCount.h"

#include <cstdlib>
#include <new>

#include "Rex/UnderAsan.h"

namespace {
size_t allocations = 0;
}  // namespace

size_t LldpTest::allocationCount() {
   return allocations;
}

#ifndef REX_UNDER_ASAN

void* operator new(size_t size) {
   ++allocations;
   if (void* memory = std::malloc(size)) return memory;
   throw std::bad_alloc();
}
void operator delete(void* memory) noexcept {
   std::free(memory);
}
void operator delete(void* memory, size_t) noexcept {
   std::free(memory);
}

#endif
