// What the served devices add up to: the switch's own address and its longest frame. Follows the
// links one by one, so that a change costs what it touches, however many devices there are.
#pragma once

#include <cstdint>
#include <map>
#include <set>

#include "host/Feeders/Links.h"
#include "host/Feeders/ServedDevices.h"

namespace Host {

class ServedLinks {
 public:
   // Starts with the links that stand.
   ServedLinks(const Links& links, const ServedDevices& devices);

   // A device has come, changed or gone. False where that changes nothing of what is told here.
   bool handleLink(int32_t ifIndex);

   // The switch's address: that of the kernel bridge that a served device is a member of, directly
   // or through a bond, the first by index; without one `present`, as long as a served device bears
   // it; then the lowest of theirs. A port that comes must not make the switch another chassis to
   // its neighbours, but an address that has left with its device may turn up somewhere else.
   // `present` stays also when there is no device at all.
   Wirekit::EthAddr bridgeMacAddr(const Wirekit::EthAddr& present) const;
   // Octets with header and frame check sequence, by the largest MTU; 0 without a device.
   uint16_t maxFrameSize() const;

 private:
   struct Share {
      uint32_t mtu;
      Wirekit::EthAddr ethAddr;  // zero: it has none
      int32_t bridge;            // index of the bridge that it is a member of, 0 for none
   };
   void add(const Link& link);
   bool remove(int32_t ifIndex);
   bool sync(int32_t ifIndex, int levels);

   const Links& links_;
   const ServedDevices& devices_;
   std::map<int32_t, Share> shares_;  // by index
   std::multiset<uint32_t> mtus_;
   std::multiset<Wirekit::EthAddr> ethAddrs_;
   std::multiset<int32_t> bridges_;
};

}  // namespace Host
