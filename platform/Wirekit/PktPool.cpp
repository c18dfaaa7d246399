#include "Wirekit/PktPool.h"

namespace Wirekit {

PktPool::~PktPool() {
   for (Shelf* shelf : {&ordinaryShelf_, &fullShelf_}) {
      while (Pkt* pkt = shelf->first) {
         shelf->first = pkt->next_;
         delete pkt;
      }
   }
}

PktPool::Shelf* PktPool::shelf(size_t capacity) {
   if (capacity == ordinary) return &ordinaryShelf_;
   return capacity == full ? &fullShelf_ : nullptr;
}

Pkt::Ptr PktPool::get(size_t capacity, size_t headRoom) {
   if (left() < capacity) return nullptr;
   used_ += capacity;
   Shelf* from = shelf(capacity);
   Pkt::Ptr pkt;
   // A shelf may still hold packets of a size that was set before.
   while (from && from->first && !pkt) {
      Pkt* next = from->first;
      from->first = next->next_;
      --from->count;
      if (next->capacity_ == capacity) {
         pkt = Pkt::Ptr(next);
      } else {
         delete next;
      }
   }
   if (pkt) {
      pkt->pool_ = Rex::Ptr<PktPool>(this);
   } else {
      pkt = Pkt::Ptr::adopt(new Pkt(Rex::Ptr<PktPool>(this), capacity));
   }
   pkt->emptyIs(headRoom);
   return pkt;
}

void PktPool::put(Pkt* pkt) {
   used_ -= pkt->capacity_;
   Shelf* to = shelf(pkt->capacity_);
   // The pool itself ends with the last of its packets once its manager is gone.
   Rex::Ptr<PktPool> last = std::move(pkt->pool_);
   if (!to || to->count == Shelf::kept) {
      delete pkt;
      return;
   }
   pkt->next_ = to->first;
   to->first = pkt;
   ++to->count;
}

}  // namespace Wirekit
