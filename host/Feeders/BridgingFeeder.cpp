#include "host/Feeders/BridgingFeeder.h"

#include <algorithm>
#include <limits>

#include "host/Feeders/FedEntity.h"

namespace Host {
namespace {

constexpr const char* capabilitiesPath = "bridging/hwcapabilities";
constexpr uint32_t frameOverhead = 14 + 4;  // Ethernet header, frame check sequence
constexpr int mostMasters = 8;              // the kernel nests no deeper

// The bridge that a device is a member of, or null.
const Link* bridgeOf(const Links& links, const Link& link) {
   const Link* at = &link;
   for (int i = 0; at && at->master && i < mostMasters; ++i) {
      at = links.at(at->master);
      if (at && at->kind == "bridge") return at;
   }
   return nullptr;
}

}  // namespace

BridgingFeeder::BridgingFeeder(const Rex::Ptr<Statestore::EntityManager>& entityManager,
                               Links& links, const ServedDevices& devices)
    : links_(links),
      devices_(devices),
      config_(fedEntity<Bridging::Config>(*entityManager, configPath)),
      capabilities_(fedEntity<Bridging::HwCapabilities>(*entityManager, capabilitiesPath)) {
   handleLinks();
   // A device that is no port and has no members, such as one of thousands of VLANs, has no say.
   auto counts = [this](const Link* link) {
      return link && (devices_.serves(*link) || !links_.membersOf(link->ifIndex).empty());
   };
   links.listenerIs([this, counts](const Link* before, const Link* after) {
      if (counts(before) || counts(after)) handleLinks();
   });
}

std::set<std::string> BridgingFeeder::fedPaths() {
   return {configPath, capabilitiesPath};
}

Wirekit::EthAddr BridgingFeeder::bridgeMacAddr(const Links& links, const ServedDevices& devices,
                                               const Wirekit::EthAddr& present) {
   const Link* bridge = nullptr;
   const Link* lowest = nullptr;
   bool borne = false;
   for (const auto& [ifIndex, link] : links.all()) {
      if (link.ethAddr.isZero() || !devices.serves(link)) continue;
      const Link* master = bridgeOf(links, link);
      if (master && (!bridge || master->ifIndex < bridge->ifIndex)) bridge = master;
      if (!lowest || link.ethAddr < lowest->ethAddr) lowest = &link;
      borne |= link.ethAddr == present;
   }
   if (bridge) return bridge->ethAddr;
   return borne || !lowest ? present : lowest->ethAddr;
}

uint16_t BridgingFeeder::maxFrameSize(const Links& links, const ServedDevices& devices) {
   uint32_t mtu = 0;
   for (const auto& [ifIndex, link] : links.all()) {
      if (devices.serves(link)) mtu = std::max(mtu, link.mtu);
   }
   if (!mtu) return 0;
   // An MTU near the largest number must not wrap.
   constexpr uint32_t most = std::numeric_limits<uint16_t>::max();
   return static_cast<uint16_t>(std::min(mtu, most - frameOverhead) + frameOverhead);
}

void BridgingFeeder::handleLinks() {
   config_->bridgeMacAddrIs(bridgeMacAddr(links_, devices_, config_->bridgeMacAddr()));
   capabilities_->maxFrameSizeIs(maxFrameSize(links_, devices_));
}

}  // namespace Host
