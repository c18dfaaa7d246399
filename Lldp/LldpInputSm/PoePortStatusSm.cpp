#include "Lldp/LldpInputSm/PoePortStatusSm.h"

#include "Lldp/LldpInputSm/PoeSm.h"
#include "Lldp/LldpInputSm/PowerRequest.h"

namespace Lldp::Agent::Input {

PoePortStatusSm::PoePortStatusSm(Lldp::PortStatus::PtrConst portStatus, PoeSm* parent)
    : RemoteSystemsSm(std::move(portStatus)), parent_(parent) {
   doFollow();
}

PoePortStatusSm::~PoePortStatusSm() = default;

// Which of several is the first in the table, only the table can tell.
Lldp::RemoteSystem::PtrConst PoePortStatusSm::remoteSystemWithPowerRequest() const {
   if (asking_.size() > 1) return findRemoteSystemWithPowerRequest(portStatus());
   std::vector<RemoteSystem::PtrConst> asking;
   for (auto [index, remoteSystem] : asking_) asking.push_back(remoteSystem);
   return chooseRemoteSystem(intfId(), asking);
}

void PoePortStatusSm::doAdd(const RemoteSystem::PtrConst& remoteSystem) {
   doWatch(remoteSystem, shouldPoeDataFromPowerViaMdiBePublished(*remoteSystem));
}

void PoePortStatusSm::doRemove(const RemoteSystem::PtrConst& remoteSystem) {
   if (asking_.erase(remoteSystem->index())) parent_->doNote(intfId());
}

void PoePortStatusSm::handlePowerViaMdi(const Rex::Change& change) {
   RemoteSystem::PtrConst remoteSystem(static_cast<const RemoteSystem*>(&change.entity));
   bool asks = shouldPoeDataFromPowerViaMdiBePublished(*remoteSystem);
   if (asks == static_cast<bool>(asking_.find(remoteSystem->index()))) return;
   unwatch(remoteSystem);
   doWatch(remoteSystem, asks);
}

void PoePortStatusSm::handleAsking(const Rex::Change&) {
   if (asking_.size() > 1) parent_->doNote(intfId());
}

// A refresh and a source address matter only of those that ask: of the others a refresh is to cost
// nothing here.
void PoePortStatusSm::doWatch(const RemoteSystem::PtrConst& remoteSystem, bool asks) {
   on(remoteSystem, RemoteSystem::powerViaMdiTlvReceivedAttr, &PoePortStatusSm::handlePowerViaMdi);
   on(remoteSystem, RemoteSystem::powerViaMdiInfoAttr, &PoePortStatusSm::handlePowerViaMdi);
   bool changed = asks;
   if (asks) {
      on(remoteSystem, RemoteSystem::lastRefreshTimeAttr, &PoePortStatusSm::handleAsking);
      on(remoteSystem, RemoteSystem::ethAddrAttr, &PoePortStatusSm::handleAsking);
      asking_.insert(remoteSystem->index(), remoteSystem);
   } else {
      changed = asking_.erase(remoteSystem->index());
   }
   if (changed) parent_->doNote(intfId());
}

}  // namespace Lldp::Agent::Input
