// The recycled buffers behind Pkt::Manager. Two sizes are kept: ordinary frames, and what newPkt()
// is set to give; a packet of any other size goes back to the system.
#pragma once

#include <array>
#include <cstddef>

#include "Wirekit/Pkt.h"

namespace Wirekit {

class PktPool : public Rex::PtrInterface {
 public:
   static constexpr size_t ordinary = 2048;

   ~PktPool() override;

   // An empty packet with a buffer of `capacity` octets and its head `headRoom` into it, or null
   // when the bound is reached.
   Pkt::Ptr get(size_t capacity, size_t headRoom);
   // Takes a packet back whose last pointer is gone.
   void put(Pkt* pkt);
   // A packet's buffer has grown.
   void grown(size_t octets) { used_ += octets; }

   size_t full = 10240;  // buffer size of newPkt()
   size_t limit = Pkt::Manager::defaultMemoryLimit;
   size_t left() const { return used_ < limit ? limit - used_ : 0; }

 private:
   // Free packets of one size. More than `kept` are not held on to after a burst.
   struct Shelf {
      static constexpr size_t kept = 1024;
      Pkt* first = nullptr;
      size_t count = 0;
   };
   Shelf* shelf(size_t capacity);

   Shelf ordinaryShelf_;
   Shelf fullShelf_;
   size_t used_ = 0;
};

}  // namespace Wirekit
