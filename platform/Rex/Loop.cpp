#include "Rex/Loop.h"

#include <sys/epoll.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cmath>
#include <system_error>

#include "Rex/Dispatcher.h"

namespace Rex {
namespace {

[[noreturn]] void fail(const char* what) {
   throw std::system_error(errno, std::generic_category(), what);
}

// Rounded up, so that the timer is due when the loop comes back.
int milliseconds(double seconds) {
   if (seconds <= 0) return 0;
   return static_cast<int>(std::ceil(std::min(seconds, 1e6) * 1000));
}

}  // namespace

Loop::Loop() : epoll_(epoll_create1(EPOLL_CLOEXEC)) {
   if (epoll_ < 0) fail("epoll_create1");
}

Loop::~Loop() {
   close(epoll_);
}

void Loop::descriptorIs(int fd, uint32_t events, Ready ready, Serve how) {
   epoll_event event{};
   event.events = events;
   event.data.fd = fd;
   int operation = descriptors_.contains(fd) ? EPOLL_CTL_MOD : EPOLL_CTL_ADD;
   if (epoll_ctl(epoll_, operation, fd, &event) < 0) fail("epoll_ctl");
   descriptors_[fd] = std::make_shared<Descriptor>(Descriptor{std::move(ready), how});
}

void Loop::descriptorDel(int fd) {
   if (!descriptors_.erase(fd)) return;
   epoll_ctl(epoll_, EPOLL_CTL_DEL, fd, nullptr);
}

void Loop::run(Context& context) {
   ContextScope scope(context);
   stopped_ = false;
   while (!stopped_) {
      context.clock()->runDue();
      if (!stopped_) wait(context);
   }
}

void Loop::wait(Context& context) {
   double next = context.clock()->nextTime();
   int timeout = next == never ? -1 : milliseconds(next - context.clock()->now());
   std::array<epoll_event, 64> events;
   int count = epoll_wait(epoll_, events.data(), static_cast<int>(events.size()), timeout);
   ++wakeups_;
   if (count < 0 && errno != EINTR) fail("epoll_wait");
   for (int i = 0; i < count && !stopped_; ++i) serve(events[i].data.fd, events[i].events);
}

void Loop::serve(int fd, uint32_t events) {
   // A handler that ran before may have removed the descriptor, or this one may remove itself.
   auto at = descriptors_.find(fd);
   if (at == descriptors_.end()) return;
   auto descriptor = at->second;
   if (descriptor->how == Serve::outside) {
      descriptor->ready(events);
   } else {
      Dispatcher::run([&] { descriptor->ready(events); });
   }
}

}  // namespace Rex
