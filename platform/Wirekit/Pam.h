// Packet access of one interface: takes frames from the wire and gives frames to it. What stands
// behind it, a device or a simulated wire, derives from it.
#pragma once

#include <cstdint>
#include <functional>
#include <span>

#include "Rex/Context.h"
#include "Rex/Entity.h"
#include "Rex/Timer.h"
#include "Wirekit/IntfId.h"
#include "Wirekit/Pkt.h"

namespace Wirekit {

class Pam : public Rex::Entity {
   REX_ENTITY(Pam, Rex::Entity)
   REX_KEY(IntfId, intfId)
   // Moves on while frames wait. Each change asks its watcher to take one frame; it runs again, in
   // a later pass of the timers, as long as frames are left, so that other ports run in between.
   REX_COUNTER(uint64_t, readableCount)
   // Frames that arrived while the queue held its share.
   REX_COUNTER(uint64_t, rxDrops)
   REX_ENTITY_END()

   explicit Pam(const IntfId& intfId);
   ~Pam() override;

   // The frame that waited longest, or null.
   Pkt::Ptr rxPkt();
   // Sends one frame. A frame that cannot leave is lost.
   void txPktIs(const Pkt::Ptr& pkt);

   // For the maker: a frame has arrived. It waits in a copy, and never runs the watcher from inside
   // this call. A queue may hold as much memory as the context's packets have left: a flooded port
   // thus takes half at most, and every further flooded one a like share, which leaves room for
   // the others. Returns whether the frame was taken.
   bool rxFrameIs(std::span<const uint8_t> frame, const std::optional<VlanTag>& separateTag);
   size_t rxFrames() const { return queue_.size(); }

   // Is shown each frame that arrives, before it waits: what its reader will need can begin to come
   // from memory meanwhile. It changes nothing.
   using Herald = void (*)(std::span<const uint8_t> frame);
   void heraldIs(Herald herald) { herald_ = herald; }

   // Unplugs: nothing is received or sent from here on, and waiting frames are let go.
   void close();
   bool closed() const { return closed_; }

 protected:
   virtual void doTransmit(Pkt& pkt) = 0;
   virtual void doClose() {}
   // The queue is empty again after having been full.
   virtual void handleRoom() {}

 private:
   void handleTurn();

   Pkt::Manager& packets_;
   Rex::Timer turn_;
   PktQueue queue_;
   Herald herald_ = nullptr;
   bool closed_ = false;
   bool dropping_ = false;  // the last frame found no room
   double patience_ = 0;    // seconds until a watcher that took nothing is asked again
};

}  // namespace Wirekit
