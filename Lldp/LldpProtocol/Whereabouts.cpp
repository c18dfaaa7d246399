#include "Lldp/LldpProtocol/Whereabouts.h"

#include <functional>

#include "Lldp/LldpProtocol/Octets.h"

namespace Lldp::Agent {
namespace {

constexpr size_t cacheLine = 64;

uintptr_t addressOf(const auto& object) {
   return reinterpret_cast<uintptr_t>(&object);
}

void fetchLines(uintptr_t begin, size_t octets) {
   for (uintptr_t line = begin & ~(cacheLine - 1); line < begin + octets; line += cacheLine) {
      __builtin_prefetch(reinterpret_cast<const void*>(line));
   }
   // The compiler drops a function that does nothing but fetch, unless it has an effect.
   asm volatile("");
}

}  // namespace

Whereabouts::Sender Whereabouts::senderOf(std::string_view lldpdu) {
   constexpr size_t headerSize = 2;
   constexpr uint16_t lengthMask = 0x1FF;
   size_t end = 0;
   for (int tlv = 0; tlv < 2 && end + headerSize <= lldpdu.size(); ++tlv) {
      end += headerSize + (get16(&lldpdu[end]) & lengthMask);
   }
   return Sender{std::hash<std::string_view>()(lldpdu.substr(0, end))};
}

void Whereabouts::expect(Sender sender) const {
   fetchLines(addressOf(buckets_[at(sender)]), sizeof(Bucket));
}

const void* Whereabouts::fetch(Sender sender) const {
   const Bucket& bucket = buckets_[at(sender)];
   for (size_t i = 0; i < perBucket; ++i) {
      uintptr_t known = bucket.remoteSystems[i];
      if (!known || bucket.tags[i] != tagOf(sender)) continue;
      // Of an index the value with what stands beside it, of the neighbour the framework's part,
      // and its times with the last LLDPDU.
      fetchLines(bucket.inIndex[i], 3 * sizeof(void*));
      fetchLines(known, sizeof(Rex::Entity));
      fetchLines(known + timesAt_, sizeof(RemoteSystem) - timesAt_);
      return reinterpret_cast<const void*>(known);
   }
   return nullptr;
}

void Whereabouts::note(Sender sender, const RemoteSystem& remoteSystem,
                       const RemoteSystem::Ptr& inIndex) {
   Bucket& bucket = buckets_[at(sender)];
   size_t place = 0;
   while (place < perBucket && bucket.tags[place] != tagOf(sender)) ++place;
   if (place == perBucket) {
      place = bucket.next;
      bucket.next = static_cast<uint32_t>((place + 1) % perBucket);
      bucket.tags[place] = tagOf(sender);
      if (bucket.remoteSystems[place]) ++displaced_;
   }
   bucket.remoteSystems[place] = addressOf(remoteSystem);
   bucket.inIndex[place] = addressOf(inIndex);
   timesAt_ = addressOf(remoteSystem.creationTime()) - addressOf(remoteSystem);
   if (++noted_ >= 4 * buckets_.size()) grow();
}

// What goes and comes now and then leaves the table as it is. Where each sixteenth frame displaces
// another's sender it is too small; they are noted anew when they are heard again.
void Whereabouts::grow() {
   bool full = displaced_ > noted_ / 16;
   noted_ = displaced_ = 0;
   if (full && buckets_.size() < most) buckets_.assign(buckets_.size() * 2, {});
}

}  // namespace Lldp::Agent
