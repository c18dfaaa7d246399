// The main loop: waits with epoll for descriptors and for the next timer, and runs what is due, one
// handler at a time. It does not wake when there is nothing to do.
#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <memory>

#include "Rex/Context.h"
#include "Rex/Ptr.h"

namespace Rex {

class Loop {
 public:
   Loop();
   ~Loop();
   Loop(const Loop&) = delete;
   Loop& operator=(const Loop&) = delete;

   // How a descriptor is served. `asHandler`: what it changes is delivered after its end, as for
   // every handler of the agent. `outside`: as somebody outside the agent who writes entities (a
   // feeder, the management API), so that each change is delivered to its end before its mutator
   // returns.
   enum class Serve { asHandler, outside };

   // Runs `ready(events)` while the descriptor has one of `events` (EPOLLIN, ...). A second call
   // for a descriptor changes its events and its handler. Throws std::system_error.
   using Ready = std::function<void(uint32_t events)>;
   void descriptorIs(int fd, uint32_t events, Ready ready, Serve how = Serve::asHandler);
   void descriptorDel(int fd);

   // Serves the context's timers and the descriptors until stop() is called from a handler.
   void run(Context& context);
   void stop() { stopped_ = true; }
   // Times that the loop came back from waiting; an idle agent's figure stands still.
   uint64_t wakeups() const { return wakeups_; }

 private:
   void wait(Context& context);
   void serve(int fd, uint32_t events);

   struct Descriptor {
      Ready ready;
      Serve how;
   };

   int epoll_;
   std::map<int, std::shared_ptr<Descriptor>> descriptors_;
   bool stopped_ = false;
   uint64_t wakeups_ = 0;
};

}  // namespace Rex
