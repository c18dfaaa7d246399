#include "Rex/Trace.h"

#include <fmt/format.h>

#include <cstdio>

#include "Rex/Assert.h"
#include "Rex/Context.h"

namespace Rex {
namespace {

// Handles are made before main(), in any order of source files.
std::vector<std::string>& names() {
   static std::vector<std::string> all;
   return all;
}

}  // namespace

size_t traceFacility(std::string_view name) {
   auto& all = names();
   for (size_t i = 0; i < all.size(); ++i) {
      if (all[i] == name) return i;
   }
   REX_ASSERT(all.size() < maxTraceFacilities);
   all.emplace_back(name);
   return all.size() - 1;
}

std::vector<std::string> traceFacilities() {
   return names();
}

TraceHandle::TraceHandle(const char* facility, bool on)
    : facility_(facility), index_(traceFacility(facility)) {
   if (on) traceMasks[index_] = 0x3FF;
}

TraceStatement::~TraceStatement() {
   Context& context = Context::current();
   TraceRecord record{context.clock()->now(), handle_.facility(), level_, text_.str()};
   if (context.traceSink) {
      context.traceSink(record);
   } else {
      fmt::print(stderr, "{:.6f} {} {} {}\n", record.time, record.facility, record.level,
                 record.text);
   }
}

}  // namespace Rex
