// Sequences of operations on the collections against their models.
#include <cstdio>
#include <cstdlib>

#include "../tests/unit/RexMapModel.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
   using namespace RexMapModel;
   std::string hash = Driver<HashModel>({data, size}).run();
   std::string ordered = Driver<OrderedModel>({data, size}).run();
   if (hash.empty() && ordered.empty()) return 0;
   std::fprintf(stderr, "hash map: %s\nordered map: %s\n", hash.c_str(), ordered.c_str());
   std::abort();
}
