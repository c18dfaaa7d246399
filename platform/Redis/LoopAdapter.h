// Serves a connection of hiredis from the loop, and owns it. Calls out of it run as somebody
// outside the agent, Loop::Serve::outside.
#pragma once

#include <hiredis/async.h>

#include <cstdint>
#include <functional>
#include <memory>
#include <string>

#include "Rex/Loop.h"

namespace Redis {

class LoopAdapter {
 public:
   // `heard`: octets came. `broken`: the connection is at its end, and why; told once, and may
   // delete the adapter, as any callback of the connection may.
   LoopAdapter(Rex::Loop& loop, redisAsyncContext* redis, std::function<void()> heard,
               std::function<void(const std::string&)> broken);
   ~LoopAdapter();
   LoopAdapter(const LoopAdapter&) = delete;
   LoopAdapter& operator=(const LoopAdapter&) = delete;

   // Null when it is at its end.
   redisAsyncContext* redis() { return redis_; }

 private:
   void want(uint32_t add, uint32_t leave);
   void serve(uint32_t events);
   void handleFreed();

   Rex::Loop& loop_;
   redisAsyncContext* redis_;
   const int fd_;
   uint32_t events_ = 0;
   std::function<void()> heard_;
   std::function<void(const std::string&)> broken_;
   const std::shared_ptr<bool> alive_ = std::make_shared<bool>(true);
};

}  // namespace Redis
