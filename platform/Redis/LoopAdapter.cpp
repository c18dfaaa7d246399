#include "Redis/LoopAdapter.h"

#include <sys/epoll.h>

#include <utility>

namespace Redis {

LoopAdapter::LoopAdapter(Rex::Loop& loop, redisAsyncContext* redis, std::function<void()> heard,
                         std::function<void(const std::string&)> broken)
    : loop_(loop),
      redis_(redis),
      fd_(redis->c.fd),
      heard_(std::move(heard)),
      broken_(std::move(broken)) {
   redis_->ev.data = this;
   redis_->ev.addRead = [](void* data) { static_cast<LoopAdapter*>(data)->want(EPOLLIN, 0); };
   redis_->ev.delRead = [](void* data) { static_cast<LoopAdapter*>(data)->want(0, EPOLLIN); };
   redis_->ev.addWrite = [](void* data) { static_cast<LoopAdapter*>(data)->want(EPOLLOUT, 0); };
   redis_->ev.delWrite = [](void* data) { static_cast<LoopAdapter*>(data)->want(0, EPOLLOUT); };
   redis_->ev.cleanup = [](void* data) { static_cast<LoopAdapter*>(data)->handleFreed(); };
}

LoopAdapter::~LoopAdapter() {
   if (!redis_) return;
   loop_.descriptorDel(fd_);
   // Inside a callback of the connection it is freed when that is over: nothing may lead here then.
   redis_->ev = {};
   redis_->data = nullptr;
   redisAsyncFree(redis_);
}

void LoopAdapter::want(uint32_t add, uint32_t leave) {
   uint32_t events = (events_ | add) & ~leave;
   if (events == events_) return;
   events_ = events;
   loop_.descriptorIs(
       fd_, events, [this](uint32_t ready) { serve(ready); }, Rex::Loop::Serve::outside);
}

void LoopAdapter::serve(uint32_t events) {
   std::weak_ptr<bool> alive = alive_;
   if (events & ~static_cast<uint32_t>(EPOLLOUT)) {
      heard_();
      redisAsyncHandleRead(redis_);
   }
   if (!alive.expired() && redis_ && (events & EPOLLOUT)) redisAsyncHandleWrite(redis_);
}

// The library is about to free the connection, because it is at its end.
void LoopAdapter::handleFreed() {
   loop_.descriptorDel(fd_);
   redisAsyncContext* freed = std::exchange(redis_, nullptr);
   freed->data = nullptr;
   std::string why = freed->c.err ? freed->c.errstr : "the connection was closed";
   auto broken = std::move(broken_);
   broken(why);
}

}  // namespace Redis
