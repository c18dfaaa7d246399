// The reading side of a ring trace file, for tests and for whoever looks into what a process left.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace RingLog {

struct Record {
   uint64_t sequence;
   double time;  // seconds
   int level;
   std::string facility;
   std::string text;
};

// All statements of a file in the order in which they were written. A file that is cut off or not
// sound gives those that can be read; throws std::runtime_error for one that is no ring trace.
std::vector<Record> read(const std::string& path);

}  // namespace RingLog
