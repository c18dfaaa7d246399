#include "Wirekit/Pkt.h"

#include <algorithm>
#include <cstring>

#include "Rex/Assert.h"
#include "Rex/Context.h"
#include "Wirekit/PktPool.h"

namespace Wirekit {
namespace {
// In front of a received frame: a tag can be put back in line without moving the frame.
constexpr size_t rxHeadRoom = 64;
}  // namespace

Pkt::Pkt(Rex::Ptr<PktPool> pool, size_t capacity)
    : pool_(std::move(pool)), buffer_(new char[capacity]), capacity_(capacity) {
   emptyIs(capacity);
}

Pkt::~Pkt() {
   delete[] buffer_;
}

void Pkt::emptyIs(size_t headRoom) {
   head_ = tail_ = buffer_ + headRoom;
   separateVlanTag_.reset();
   next_ = nullptr;
}

void Pkt::onZero() const {
   auto* self = const_cast<Pkt*>(this);
   self->pool_->put(self);
}

char* Pkt::newSharedHeadData(size_t n) {
   auto room = static_cast<size_t>(head_ - buffer_);
   if (room < n) {
      // As much again in front, for what comes next.
      size_t larger = 2 * (bytes() + n);
      auto behind = static_cast<size_t>(buffer_ + capacity_ - tail_);
      size_t capacity = std::max(larger, capacity_) + behind;
      char* buffer = new char[capacity];
      char* tail = buffer + capacity - behind;
      char* head = tail - bytes();
      std::memcpy(head, head_, bytes());
      delete[] buffer_;
      pool_->grown(capacity - capacity_);
      buffer_ = buffer;
      capacity_ = capacity;
      head_ = head;
      tail_ = tail;
   }
   head_ -= n;
   return head_;
}

void Pkt::delSharedHeadData(size_t n) {
   REX_ASSERT(n <= bytes());
   head_ += n;
}

void Pkt::delSharedTailData(size_t n) {
   REX_ASSERT(n <= bytes());
   tail_ -= n;
}

Pkt::Manager::Manager() : pool_(Rex::make<PktPool>()) {}
Pkt::Manager::~Manager() = default;

Pkt::Ptr Pkt::Manager::newPkt() {
   return pool_->get(pool_->full, pool_->full);
}

Pkt::Ptr Pkt::Manager::newPkt(std::span<const uint8_t> octets) {
   size_t needed = rxHeadRoom + octets.size();
   size_t capacity =
       needed <= PktPool::ordinary ? PktPool::ordinary : std::max(needed, pool_->full);
   Pkt::Ptr pkt = pool_->get(capacity, rxHeadRoom);
   if (!pkt) return nullptr;
   if (!octets.empty()) std::memcpy(pkt->tail_, octets.data(), octets.size());
   pkt->tail_ += octets.size();
   return pkt;
}

size_t Pkt::Manager::maxSharedData() const {
   return pool_->full;
}
void Pkt::Manager::maxSharedDataIs(size_t octets) {
   pool_->full = octets;
}
size_t Pkt::Manager::memoryLimit() const {
   return pool_->limit;
}
void Pkt::Manager::memoryLimitIs(size_t octets) {
   pool_->limit = octets;
}
size_t Pkt::Manager::memoryLeft() const {
   return pool_->left();
}

Pkt::Manager& globalPktManager() {
   return Rex::Context::current().service<Pkt::Manager>();
}

void PktQueue::push(Pkt::Ptr pkt) {
   Pkt* raw = pkt.release();
   raw->next_ = nullptr;
   (last_ ? last_->next_ : first_) = raw;
   last_ = raw;
   ++size_;
   memory_ += raw->capacity_;
}

Pkt::Ptr PktQueue::pop() {
   if (!first_) return nullptr;
   Pkt::Ptr pkt = Pkt::Ptr::adopt(first_);
   first_ = std::exchange(pkt->next_, nullptr);
   if (!first_) last_ = nullptr;
   --size_;
   memory_ -= pkt->capacity_;
   return pkt;
}

void PktQueue::clear() {
   while (pop()) {
   }
}

}  // namespace Wirekit
