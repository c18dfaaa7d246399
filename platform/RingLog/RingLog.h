// The ring trace: the last statements of each level, always on, in a memory-mapped file that
// outlives the process. A statement is text and values, as in Rex/Trace.h:
//
//   RINGLOG(trace, 6, "Ack " << number);   // to the ring
//   DualLog(trace, 6, "Ack " << number);   // to the ring and, where it is on, to the trace
//
// A context that never called initialize() has no ring: RINGLOG then evaluates nothing.
#pragma once

#include <array>
#include <cstdint>
#include <ostream>
#include <streambuf>
#include <string_view>

#include "Rex/Trace.h"
#include "RingLog/Format.h"

namespace RingLog {

using Sizes = std::array<uint32_t, rings>;

// Starts the present context's ring trace. Throws std::system_error, whose words name the file.
//   fileName      in it "%d" stands for the process's number
//   sizes         of each level's ring, in KiB
//   folder        null: the environment's RINGLOGDIR, or else the context's run-time folder
//   lowestLevel   lower levels are not recorded
//   recordHeader  the octets in front of each record: 24, the one layout that there is
//   mode          the file's permissions; 0 for readable by owner and group
//   keepLast      whether a file of that name, left by an earlier process, is kept as <name>.last
//   longest       the octets of a statement above which it is cut
void initialize(const Rex::String& fileName, const Sizes& sizes, const char* folder,
                int lowestLevel, int recordHeader, unsigned mode, bool keepLast, int longest);

// The path of the present context's file; empty without a ring.
Rex::String path();

class File;

// A statement on its way: composed once, in place, then handed to the ring and to the trace.
class Statement : private std::streambuf {
 public:
   static constexpr std::size_t room = 2048;  // a longer statement is cut, in the trace too

   enum Outlets { ringOnly, ringAndTrace };
   Statement(const Rex::TraceHandle& handle, int level, Outlets outlets);
   ~Statement() override;
   Statement(const Statement&) = delete;
   Statement& operator=(const Statement&) = delete;

   // Whether anybody listens.
   explicit operator bool() const { return file_ || trace_; }

   template <class T>
   Statement& operator<<(const T& value) {
      Rex::print(out_, value);
      return *this;
   }

 private:
   std::string_view text() const { return {pbase(), std::size_t(pptr() - pbase())}; }

   const Rex::TraceHandle& handle_;
   const int level_;
   File* const file_;
   const bool trace_;
   std::array<char, room> text_;
   std::ostream out_;
};

}  // namespace RingLog

#define RINGLOG_TO_(outlets, handle, level, words)                                          \
   do {                                                                                     \
      ::RingLog::Statement ringStatement((handle), (level), ::RingLog::Statement::outlets); \
      if (ringStatement) ringStatement << words;                                            \
   } while (false)
#define RINGLOG(handle, level, words) RINGLOG_TO_(ringOnly, handle, level, words)
#define DualLog(handle, level, words) RINGLOG_TO_(ringAndTrace, handle, level, words)
