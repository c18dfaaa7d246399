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
   const Link* at = this->at(link.ifIndex);
   if (at && *at == link) return;
   std::optional<Link> before = at ? std::optional(*at) : std::nullopt;
   store(link);
   tell(before ? &*before : nullptr, this->at(link.ifIndex));
}

void Links::linkDel(int32_t ifIndex) {
   auto at = all_.find(ifIndex);
   if (at == all_.end()) return;
   Link before = at->second;
   leaveMaster(before);
   all_.erase(at);
   tell(&before, nullptr);
}

void Links::linksAre(const std::map<int32_t, Link>& links) {
   // What has gone goes first: its name may belong to another device by now.
   std::vector<int32_t> gone;
   for (const auto& [ifIndex, link] : all_) {
      if (!links.contains(ifIndex)) gone.push_back(ifIndex);
   }
   for (int32_t ifIndex : gone) linkDel(ifIndex);
   // A member may come before its master.
   std::map<int32_t, std::optional<Link>> changed;
   for (const auto& [ifIndex, link] : links) {
      const Link* before = at(ifIndex);
      if (before && *before == link) continue;
      changed[ifIndex] = before ? std::optional(*before) : std::nullopt;
      store(link);
   }
   for (const auto& [ifIndex, before] : changed) tell(before ? &*before : nullptr, at(ifIndex));
}

void Links::store(const Link& link) {
   if (const Link* before = at(link.ifIndex)) leaveMaster(*before);
   all_[link.ifIndex] = link;
   if (link.master) members_[link.master].insert(link.ifIndex);
}

void Links::leaveMaster(const Link& link) {
   auto at = members_.find(link.master);
   if (at == members_.end()) return;
   at->second.erase(link.ifIndex);
   if (at->second.empty()) members_.erase(at);
}

const Link* Links::masterOf(int32_t ifIndex) const {
   const Link* link = at(ifIndex);
   return link && link->master ? at(link->master) : nullptr;
}

const std::set<int32_t>& Links::membersOf(int32_t ifIndex) const {
   static const std::set<int32_t> none;
   auto at = members_.find(ifIndex);
   return at == members_.end() ? none : at->second;
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
