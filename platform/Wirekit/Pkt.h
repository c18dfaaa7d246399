// A frame in a buffer with room in front. Packets come from a bounded pool and go back to it when
// their last pointer goes, so that in steady state neither receiving nor sending allocates.
//
//   capacity     [ room in front | head ... data ... tail | room behind ]
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>

#include "Rex/Ptr.h"
#include "Wirekit/EthHdr.h"

namespace Wirekit {

class PktPool;

class Pkt : public Rex::PtrInterface {
 public:
   using Ptr = Rex::Ptr<Pkt>;
   class Manager;

   ~Pkt() override;

   // Length of the frame, without a tag that stands beside it.
   size_t bytes() const { return static_cast<size_t>(tail_ - head_); }
   // The frame's first octet, and the place behind its last.
   char* head() { return head_; }
   const char* head() const { return head_; }
   char* tail() { return tail_; }
   std::span<const uint8_t> data() const {
      return {reinterpret_cast<const uint8_t*>(head_), bytes()};
   }
   // Octets that the buffer holds at most.
   size_t maxSharedData() const { return capacity_; }

   // Moves the head back by `n` octets, to be written by the caller, and returns it. With too
   // little room in front the content moves to a larger buffer; addresses taken before are void
   // then.
   char* newSharedHeadData(size_t n);
   // Moves the head forward: takes `n` octets, at most bytes(), off the front.
   void delSharedHeadData(size_t n);
   // Takes `n` octets, at most bytes(), off the end.
   void delSharedTailData(size_t n);

   // The 802.1Q tag that was delivered beside the frame.
   const std::optional<VlanTag>& separateVlanTag() const { return separateVlanTag_; }
   void separateVlanTagIs(const VlanTag& tag) { separateVlanTag_ = tag; }
   void delSeparateVlanTag() { separateVlanTag_.reset(); }

 protected:
   void onZero() const override;

 private:
   friend class PktPool;
   friend class PktQueue;
   Pkt(Rex::Ptr<PktPool> pool, size_t capacity);
   void emptyIs(size_t headRoom);

   // Held while the packet is in use, so that it may outlive its manager.
   Rex::Ptr<PktPool> pool_;
   char* buffer_;
   size_t capacity_;
   char* head_;
   char* tail_;
   std::optional<VlanTag> separateVlanTag_;
   Pkt* next_ = nullptr;  // in the pool or in a queue
};

// Gives packets out, within a bound on the memory of all that are out.
class Pkt::Manager {
 public:
   // All buffers together; enough for two bursts of 10000 frames of ordinary size.
   static constexpr size_t defaultMemoryLimit = size_t{48} << 20;

   Manager();
   ~Manager();
   Manager(const Manager&) = delete;
   Manager& operator=(const Manager&) = delete;

   // An empty packet whose whole buffer is room in front, or null when the pool is exhausted.
   Pkt::Ptr newPkt();
   // A packet that holds a copy of these octets, in a buffer of about their size, with room in
   // front for another header; or null.
   Pkt::Ptr newPkt(std::span<const uint8_t> octets);

   // The buffer size of packets made by newPkt().
   size_t maxSharedData() const;
   void maxSharedDataIs(size_t octets);
   // The bound on the memory of all packets that are out, and what is left of it, in octets.
   size_t memoryLimit() const;
   void memoryLimitIs(size_t octets);
   size_t memoryLeft() const;

 private:
   Rex::Ptr<PktPool> pool_;
};

// The packets of the present context.
Pkt::Manager& globalPktManager();

// Packets that wait, first in, first out. Links the packets themselves and allocates nothing.
class PktQueue {
 public:
   PktQueue() = default;
   PktQueue(const PktQueue&) = delete;
   PktQueue& operator=(const PktQueue&) = delete;
   ~PktQueue() { clear(); }

   bool empty() const { return !first_; }
   // Packets, and the memory of their buffers in octets.
   size_t size() const { return size_; }
   size_t memory() const { return memory_; }
   // A packet stands in one queue at most.
   void push(Pkt::Ptr pkt);
   // The packet that waited longest, or null.
   Pkt::Ptr pop();
   void clear();

 private:
   Pkt* first_ = nullptr;
   Pkt* last_ = nullptr;
   size_t size_ = 0;
   size_t memory_ = 0;
};

}  // namespace Wirekit
