// Lines to a terminal, a pipe or a log collector that may not be reading: what cannot be written at
// once is left out and counted, so that nobody who stops reading stops the agent.
#pragma once

#include <cstdint>
#include <string>

namespace Host {

class LineOutlet {
 public:
   // Does not close the descriptor.
   explicit LineOutlet(int fd) : fd_(fd) {}

   // One call for one line, so that lines of two processes do not mix. A longer one than a pipe
   // takes whole is cut. Tells how many were left out before it.
   void lineIs(std::string line);

 private:
   bool ready() const;
   void put(std::string line) const;

   const int fd_;
   uint64_t lost_ = 0;
};

}  // namespace Host
