// Fills the bridging agent's entities as far as they are read: the switch's own MAC address, which
// is its chassis identifier, and the longest frame that its ports pass on.
#pragma once

#include <set>
#include <string>

#include "Foreign/Bridging.h"
#include "Statestore/EntityManager.h"
#include "host/Feeders/Links.h"
#include "host/Feeders/ServedLinks.h"

namespace Host {

class BridgingFeeder {
 public:
   static constexpr const char* configPath = "bridging/config";

   // Starts with the links that stand, and follows `links` as long as both live.
   BridgingFeeder(const Rex::Ptr<Statestore::EntityManager>& entityManager, Links& links,
                  const ServedDevices& devices);

   static std::set<std::string> fedPaths();

 private:
   void feed();

   ServedLinks served_;
   Bridging::Config::Ptr config_;
   Bridging::HwCapabilities::Ptr capabilities_;
};

}  // namespace Host
