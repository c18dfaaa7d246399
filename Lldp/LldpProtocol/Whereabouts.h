// Where in memory the neighbours lie that send frames, by what identifies them there. With many
// neighbours the one that sent a frame is in no cache, and the way to it leads from table to table.
// Here one look tells what is worth fetching, before the frame is read.
//
// What stands here is fetched and never read, so it may be out of date: nobody has to take a
// neighbour out when it goes.
#pragma once

#include <array>
#include <cstdint>
#include <string_view>
#include <vector>

#include "Rex/PoolAllocator.h"
#include "model/RemoteSystem.h"

namespace Lldp::Agent {

class Whereabouts {
 public:
   // The two TLVs that an LLDPDU begins with, in short. Two senders may share it.
   enum class Sender : size_t {};
   static Sender senderOf(std::string_view lldpdu);

   Whereabouts() : buckets_(fewest) {}

   // A frame of this sender has arrived and will be read soon.
   void expect(Sender sender) const;
   // It is read now. Returns where the neighbour was the last time, or null.
   const void* fetch(Sender sender) const;
   // The sender was found, by way of its value in an index.
   void note(Sender sender, const RemoteSystem& remoteSystem, const RemoteSystem::Ptr& inIndex);

   size_t places() const { return buckets_.size() * perBucket; }

 private:
   static constexpr size_t fewest = 64;
   static constexpr size_t most = size_t{1} << 17;  // 8 MiB
   static constexpr size_t perBucket = 3;
   struct Bucket {  // as long as a cache line
      std::array<uint32_t, perBucket> tags{};
      uint32_t next = 0;  // whose place the next newcomer takes
      // Mere addresses, since what stood there may be gone.
      std::array<uintptr_t, perBucket> remoteSystems{};
      std::array<uintptr_t, perBucket> inIndex{};
   };

   static uint32_t tagOf(Sender sender) {
      return static_cast<uint32_t>(static_cast<size_t>(sender) >> 32);
   }
   size_t at(Sender sender) const { return static_cast<size_t>(sender) & (buckets_.size() - 1); }
   void grow();

   std::vector<Bucket, Rex::PoolAllocator<Bucket>> buckets_;
   size_t timesAt_ = 0;  // octets into every neighbour
   // Since the last look at how full the table is.
   size_t noted_ = 0;
   size_t displaced_ = 0;
};

}  // namespace Lldp::Agent
