#include "host/Feeders/BridgingFeeder.h"

#include "host/Feeders/FedEntity.h"

namespace Host {
namespace {

constexpr const char* capabilitiesPath = "bridging/hwcapabilities";

}  // namespace

BridgingFeeder::BridgingFeeder(const Rex::Ptr<Statestore::EntityManager>& entityManager,
                               Links& links, const ServedDevices& devices)
    : served_(links, devices),
      config_(fedEntity<Bridging::Config>(*entityManager, configPath)),
      capabilities_(fedEntity<Bridging::HwCapabilities>(*entityManager, capabilitiesPath)) {
   feed();
   links.listenerIs([this](const Link* before, const Link* after) {
      if (served_.handleLink(after ? after->ifIndex : before->ifIndex)) feed();
   });
}

std::set<std::string> BridgingFeeder::fedPaths() {
   return {configPath, capabilitiesPath};
}

void BridgingFeeder::feed() {
   config_->bridgeMacAddrIs(served_.bridgeMacAddr(config_->bridgeMacAddr()));
   capabilities_->maxFrameSizeIs(served_.maxFrameSize());
}

}  // namespace Host
