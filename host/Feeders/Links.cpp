#include "host/Feeders/Links.h"

#include <linux/if.h>

#include <algorithm>

namespace Host {

Interface::LinkStatus linkStatus(const Link& link) {
   bool up = link.operState == IF_OPER_UP || (link.operState == IF_OPER_UNKNOWN && link.carrier);
   return up && link.adminUp ? Interface::linkUp : Interface::linkDown;
}

Interface::IntfForwardingModel forwardingModel(const Link& link) {
   return link.adminUp ? Interface::intfForwardingBridged : Interface::intfForwardingDiscard;
}

bool isPhysical(const Link& link) {
   // A port of a switch chip that the kernel drives itself is of the kind "dsa".
   return link.ethernet && (link.kind.empty() || link.kind == "veth" || link.kind == "dsa");
}

void Links::linkIs(const Link& link) {
   auto [at, fresh] = all_.try_emplace(link.ifIndex, link);
   if (fresh) {
      tell(nullptr, &at->second);
   } else if (at->second != link) {
      Link before = at->second;
      at->second = link;
      tell(&before, &at->second);
   }
}

void Links::linkDel(int32_t ifIndex) {
   auto at = all_.find(ifIndex);
   if (at == all_.end()) return;
   Link before = at->second;
   all_.erase(at);
   tell(&before, nullptr);
}

void Links::linksAre(const std::vector<Link>& links) {
   // What has gone goes first: its name may belong to another device by now.
   std::vector<int32_t> gone;
   for (const auto& [ifIndex, link] : all_) {
      auto stays = std::ranges::lower_bound(links, ifIndex, {}, &Link::ifIndex);
      if (stays == links.end() || stays->ifIndex != ifIndex) gone.push_back(ifIndex);
   }
   for (int32_t ifIndex : gone) linkDel(ifIndex);
   for (const Link& link : links) linkIs(link);
}

const Link* Links::at(int32_t ifIndex) const {
   auto at = all_.find(ifIndex);
   return at == all_.end() ? nullptr : &at->second;
}

const Link* Links::named(const std::string& name) const {
   auto at = std::ranges::find(all_, name, [](const auto& entry) { return entry.second.name; });
   return at == all_.end() ? nullptr : &at->second;
}

void Links::tell(const Link* before, const Link* after) const {
   for (const Listener& listener : listeners_) listener(before, after);
}

}  // namespace Host
