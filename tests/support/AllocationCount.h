// How often the process has asked the system for memory. Under a sanitizer, which brings its own
// allocator, it stays 0 and says nothing.
#pragma once

#include <cstddef>

namespace LldpTest {

size_t allocationCount();

}  // namespace LldpTest
