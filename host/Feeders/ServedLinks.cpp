#include "host/Feeders/ServedLinks.h"

#include <algorithm>
#include <limits>

namespace Host {
namespace {

constexpr uint32_t frameOverhead = 14 + 4;  // Ethernet header, frame check sequence
constexpr int mostMasters = 8;              // the kernel nests no deeper

// The index of the bridge that a device is a member of, or 0.
int32_t bridgeOf(const Links& links, const Link& link) {
   const Link* at = &link;
   for (int i = 0; at && at->master && i < mostMasters; ++i) {
      at = links.at(at->master);
      if (at && at->kind == "bridge") return at->ifIndex;
   }
   return 0;
}

}  // namespace

ServedLinks::ServedLinks(const Links& links, const ServedDevices& devices)
    : links_(links), devices_(devices) {
   for (const auto& [ifIndex, link] : links.all()) add(link);
}

// A master's change is one of its members too.
bool ServedLinks::handleLink(int32_t ifIndex) {
   bool bridge = bridges_.contains(ifIndex);
   return sync(ifIndex, mostMasters) || bridge;
}

bool ServedLinks::sync(int32_t ifIndex, int levels) {
   bool counts = remove(ifIndex);
   if (const Link* link = links_.at(ifIndex)) add(*link);
   counts |= shares_.contains(ifIndex);
   if (levels == 0) return counts;  // masters in a ring, as two halves of a change may look
   for (int32_t member : links_.membersOf(ifIndex)) counts |= sync(member, levels - 1);
   return counts;
}

void ServedLinks::add(const Link& link) {
   if (!devices_.serves(link)) return;
   Share share{link.mtu, link.ethAddr, bridgeOf(links_, link)};
   mtus_.insert(share.mtu);
   if (!share.ethAddr.isZero()) {
      ethAddrs_.insert(share.ethAddr);
      if (share.bridge) bridges_.insert(share.bridge);
   }
   shares_[link.ifIndex] = share;
}

bool ServedLinks::remove(int32_t ifIndex) {
   auto at = shares_.find(ifIndex);
   if (at == shares_.end()) return false;
   const Share& share = at->second;
   mtus_.erase(mtus_.find(share.mtu));
   if (!share.ethAddr.isZero()) {
      ethAddrs_.erase(ethAddrs_.find(share.ethAddr));
      if (share.bridge) bridges_.erase(bridges_.find(share.bridge));
   }
   shares_.erase(at);
   return true;
}

Wirekit::EthAddr ServedLinks::bridgeMacAddr(const Wirekit::EthAddr& present) const {
   if (!bridges_.empty()) return links_.at(*bridges_.begin())->ethAddr;
   if (ethAddrs_.empty() || ethAddrs_.contains(present)) return present;
   return *ethAddrs_.begin();
}

uint16_t ServedLinks::maxFrameSize() const {
   uint32_t mtu = mtus_.empty() ? 0 : *mtus_.rbegin();
   if (!mtu) return 0;
   // An MTU near the largest number must not wrap.
   constexpr uint32_t most = std::numeric_limits<uint16_t>::max();
   return static_cast<uint16_t>(std::min(mtu, most - frameOverhead) + frameOverhead);
}

}  // namespace Host
