#include "host/Watch/NeighborSm.h"

#include <algorithm>
#include <array>

#include "Rex/EntityType.h"
#include "host/Watch/LldpEvents.h"
#include "host/Watch/LldpStatusSm.h"

namespace Host {
namespace {

// What every frame may move without the neighbour saying anything new.
bool isRefresh(uint32_t attribute) {
   using Lldp::RemoteSystem;
   const std::array refreshed = {RemoteSystem::ttlAttr.id, RemoteSystem::lastRefreshTimeAttr.id,
                                 RemoteSystem::expiryTimeAttr.id,
                                 RemoteSystem::lastChangeTimeAttr.id, RemoteSystem::ethAddrAttr.id};
   return std::find(refreshed.begin(), refreshed.end(), attribute) != refreshed.end();
}

}  // namespace

NeighborSm::NeighborSm(const Wirekit::IntfId& port, Lldp::RemoteSystem::PtrConst remoteSystem,
                       bool own, LldpStatusSm& parent)
    : port_(port),
      remoteSystem_(std::move(remoteSystem)),
      own_(own),
      parent_(parent),
      madeIn_(Rex::Dispatcher::reaction) {
   onAny(remoteSystem_, &NeighborSm::handleAny);
}

void NeighborSm::handleAny(const Rex::Change& change) {
   // What a neighbour came with is told with its coming.
   if (madeIn_ == Rex::Dispatcher::reaction || isRefresh(change.attribute)) return;
   if (changed_.empty()) parent_.changedIs(Rex::Ptr<NeighborSm>(this));
   bool noted = std::find(changed_.begin(), changed_.end(), change.attribute) != changed_.end();
   if (!noted) changed_.push_back(change.attribute);
}

Rex::Json NeighborSm::data() const {
   return {{"port", Rex::toJson(port_)}, {"neighbor", Rex::entityToJson(*remoteSystem_)}};
}

void NeighborSm::tellAdded() const {
   if (parent_.events().heard()) parent_.events().tell("neighbor-added", data());
}

void NeighborSm::tellChanged() {
   if (closed()) return;
   Rex::Json names = Rex::Json::array();
   for (uint32_t attribute : changed_) {
      names.push_back(remoteSystem_->entityType().member(attribute)->name);
   }
   changed_.clear();
   Rex::Json changed = data();
   changed["changed"] = std::move(names);
   parent_.events().tell("neighbor-changed", changed);
}

void NeighborSm::tellGone() const {
   Rex::Json gone = data();
   gone["reason"] = parent_.events().goneReason(own_);
   parent_.events().tell("neighbor-gone", gone);
}

void NeighborSm::tellStanding(const TellStanding& tell) const {
   tell("neighbor-standing", data());
}

}  // namespace Host
