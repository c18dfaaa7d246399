#include "host/Feeders/GroupFeeder.h"

#include "Wirekit/EthIntfId.h"
#include "Wirekit/PortChannelIntfId.h"

namespace Host {
namespace {

bool isGroup(const Wirekit::IntfId* intfId) {
   return intfId && Wirekit::PortChannelIntfId::isPortChannelIntfId(*intfId);
}

}  // namespace

GroupFeeder::GroupFeeder(IntfTables& tables, Links& links, Intfs& intfs)
    : links_(links), intfs_(intfs), tables_(tables) {
   for (const auto& [ifIndex, intfId] : intfs.all()) handleIntf(ifIndex, intfId);
   intfs.listenerIs(
       [this](int32_t ifIndex, const Wirekit::IntfId& intfId) { handleIntf(ifIndex, intfId); },
       [this](int32_t ifIndex, const Wirekit::IntfId& intfId) { handleIntfGoes(ifIndex, intfId); });
   links.listenerIs([this](const Link* before, const Link* after) {
      if (before && after && before->master != after->master) syncMember(after->ifIndex);
   });
}

void GroupFeeder::handleIntf(int32_t ifIndex, const Wirekit::IntfId& intfId) {
   if (isGroup(&intfId)) {
      tables_.groups().rowIs(intfId,
                             [](Interface::EthLagIntfStatus& group) { group.memberDelAll(); });
      for (int32_t member : links_.membersOf(ifIndex)) syncMember(member);
   }
   syncMember(ifIndex);
}

// A group takes its members along. It goes before its number does, and they leave it first, so that
// none of them is told as a member of a group without a number.
void GroupFeeder::handleIntfGoes(int32_t ifIndex, const Wirekit::IntfId& intfId) {
   leave(ifIndex);
   if (!isGroup(&intfId)) return;
   std::erase_if(memberships_, [&](const auto& entry) { return entry.second.group == ifIndex; });
   tables_.groups().rowDel(intfId);
}

// A management port is no member: the agent knows of no way in which one could be aggregated.
void GroupFeeder::syncMember(int32_t ifIndex) {
   const Wirekit::IntfId* portId = intfs_.at(ifIndex);
   const Link* master = links_.masterOf(ifIndex);
   const Wirekit::IntfId* group = master ? intfs_.at(master->ifIndex) : nullptr;
   bool member = portId && Wirekit::EthIntfId::isEthIntfId(*portId) && isGroup(group);
   auto at = memberships_.find(ifIndex);
   if (at != memberships_.end()) {
      if (member && at->second.group == master->ifIndex) return;
      leave(ifIndex);
   }
   if (!member) return;
   auto row = tables_.groups().row(*group);
   if (!row) return;  // it is about to come, and looks for its members itself
   memberships_[ifIndex] = {*portId, master->ifIndex};
   row->memberIs(*portId);
}

void GroupFeeder::leave(int32_t ifIndex) {
   auto at = memberships_.find(ifIndex);
   if (at == memberships_.end()) return;
   Membership left = at->second;
   memberships_.erase(at);
   const Wirekit::IntfId* group = intfs_.at(left.group);
   auto row = group ? tables_.groups().row(*group) : nullptr;
   if (row) row->memberDel(left.portId);
}

}  // namespace Host
