#include "Rex/Assert.h"

#include <cstdio>
#include <cstdlib>
#include <stdexcept>
#include <string>

namespace Rex {

void assertionFailed(const char* expression, const char* file, int line,
                     const char* function) noexcept {
   std::fprintf(stderr, "%s:%d: %s: assertion \"%s\" failed\n", file, line, function, expression);
   std::fflush(stderr);
   std::abort();
}

void throwRangeException(const char* words) {
   throw std::range_error(words);
}

void throwMutatorArgNullPointerException(const char* mutator) {
   throw std::invalid_argument(std::string(mutator) + ": null pointer not allowed");
}

}  // namespace Rex
