#include <cstddef>
#include <cstdint>
#include <cstring>

// Not a parser of ours: a planted fault, which each run has to find within its second. It shows
// that a target can fail: that coverage is measured, that the sanitizers are compiled in, and
// that the runner notices a crash.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
   static const char secret[] = "tlv!";
   size_t matched = 0;
   while (matched < size && matched < 4 && data[matched] == uint8_t(secret[matched])) ++matched;
   if (matched < 4) return 0;
   auto* copy = new uint8_t[size];
   std::memcpy(copy, data, size);
   volatile uint8_t beyond = copy[size];
   (void)beyond;
   delete[] copy;
   return 0;
}
