// Fills the bridging agent's entities as far as they are read: the switch's own MAC address, which
// is its chassis identifier, and the longest frame that its ports pass on.
#pragma once

#include <set>
#include <string>

#include "Foreign/Bridging.h"
#include "Statestore/EntityManager.h"
#include "host/Feeders/Links.h"
#include "host/Feeders/ServedDevices.h"

namespace Host {

class BridgingFeeder {
 public:
   static constexpr const char* configPath = "bridging/config";

   // Starts with the links that stand, and follows `links` as long as both live.
   BridgingFeeder(const Rex::Ptr<Statestore::EntityManager>& entityManager, Links& links,
                  const ServedDevices& devices);

   static std::set<std::string> fedPaths();

   // The switch's address: that of the kernel bridge that a served device is a member of, directly
   // or through a bond, the first by index; without one `present`, as long as a served device bears
   // it; then the lowest of theirs. A port that comes must not make the switch another chassis to
   // its neighbours, but an address that has left with its device may turn up somewhere else.
   // `present` stays also when there is no device at all.
   static Wirekit::EthAddr bridgeMacAddr(const Links& links, const ServedDevices& devices,
                                         const Wirekit::EthAddr& present);
   // Octets with header and frame check sequence, by the largest MTU; 0 without a device.
   static uint16_t maxFrameSize(const Links& links, const ServedDevices& devices);

 private:
   void handleLinks();

   const Links& links_;
   const ServedDevices& devices_;
   Bridging::Config::Ptr config_;
   Bridging::HwCapabilities::Ptr capabilities_;
};

}  // namespace Host
