// Trace: off by default, by facility and level. The operands of a statement that is off are not
// evaluated.
//
//   TRACE(trace, 6, "Added TTL: " << ttl);
//
// Levels: 0 errors in frames; 2 frames ignored, lack of room, reached limits; 4 frames received,
// events in a neighbour's life; 5 start-up sweeps; 6 machine steps, a TLV taken or added; 8 entry
// of every handler, clock settings, each raw TLV, each changed attribute.
#pragma once

#include <sstream>
#include <string>
#include <string_view>

#include "Rex/TraceMasks.h"
#include "Rex/Value.h"

namespace Rex {

struct TraceRecord {
   double time;  // seconds, System::currentTime()
   const char* facility;
   int level;
   std::string text;
};

// The number of a facility, given out at its first mention; at most `maxTraceFacilities`.
size_t traceFacility(std::string_view name);
// The names given out so far, in order of their numbers.
std::vector<std::string> traceFacilities();

class TraceHandle {
 public:
   // `on` is the state at start; every facility of the agent starts off.
   TraceHandle(const char* facility, bool on);

   bool isOn(int level) const { return traceMasks[index_] >> level & 1; }
   const char* facility() const { return facility_; }

 private:
   const char* facility_;
   size_t index_;
};

// One statement on its way to the outlet. Any value prints by its description.
class TraceStatement {
 public:
   TraceStatement(const TraceHandle& handle, int level) : handle_(handle), level_(level) {}
   ~TraceStatement();
   TraceStatement(const TraceStatement&) = delete;
   TraceStatement& operator=(const TraceStatement&) = delete;

   template <class T>
   TraceStatement& operator<<(const T& value) {
      print(text_, value);
      return *this;
   }

 private:
   const TraceHandle& handle_;
   int level_;
   std::ostringstream text_;
};

// A number printed in hexadecimal, without a prefix.
struct Hex {
   unsigned long value;
   String stringValue() const { return format("%lx", value); }
};

}  // namespace Rex

#define TRACE(handle, level, words)                             \
   do {                                                         \
      if ((handle).isOn(level)) [[unlikely]] {                  \
         ::Rex::TraceStatement rexStatement((handle), (level)); \
         rexStatement << words;                                 \
      }                                                         \
   } while (false)
