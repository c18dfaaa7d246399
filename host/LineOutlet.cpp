#include "host/LineOutlet.h"

#include <fmt/format.h>
#include <limits.h>
#include <poll.h>
#include <unistd.h>

namespace Host {

void LineOutlet::lineIs(std::string line) {
   if (!ready()) {
      ++lost_;
      return;
   }
   if (lost_) {
      put(fmt::format("({} lines before this one are left out: nobody was reading)", lost_));
      lost_ = 0;
      if (!ready()) {
         ++lost_;
         return;
      }
   }
   put(std::move(line));
}

// With room for PIPE_BUF octets a pipe is ready for writing (pipe(7)).
bool LineOutlet::ready() const {
   pollfd one{fd_, POLLOUT, 0};
   return poll(&one, 1, 0) == 1 && (one.revents & POLLOUT);
}

void LineOutlet::put(std::string line) const {
   if (line.size() >= PIPE_BUF) line.resize(PIPE_BUF - 1);
   line += '\n';
   ssize_t taken = write(fd_, line.data(), line.size());
   static_cast<void>(taken);
}

}  // namespace Host
