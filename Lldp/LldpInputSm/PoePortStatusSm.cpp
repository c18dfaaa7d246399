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
   for (auto [index, one] : asking_) asking.push_back(one.remoteSystem);
   return chooseRemoteSystem(intfId(), asking);
}

void PoePortStatusSm::doAdd(const RemoteSystem::PtrConst& remoteSystem) {
   doWatch(remoteSystem);
   if (shouldPoeDataFromPowerViaMdiBePublished(*remoteSystem)) doAsk(remoteSystem);
}

void PoePortStatusSm::doRemove(const RemoteSystem::PtrConst& remoteSystem) {
   if (asking_.find(remoteSystem->index())) doAskNoMore(remoteSystem->index());
}

void PoePortStatusSm::handlePowerViaMdi(const Rex::Change& change) {
   RemoteSystem::PtrConst remoteSystem(static_cast<const RemoteSystem*>(&change.entity));
   bool asks = shouldPoeDataFromPowerViaMdiBePublished(*remoteSystem);
   if (asks == static_cast<bool>(asking_.find(remoteSystem->index()))) return;
   if (asks) {
      doAsk(remoteSystem);
   } else {
      doAskNoMore(remoteSystem->index());
      doWatch(remoteSystem);
   }
}

void PoePortStatusSm::handleEthAddr(const Rex::Change& change) {
   RemoteSystem::PtrConst remoteSystem(static_cast<const RemoteSystem*>(&change.entity));
   const Asking* found = asking_.find(remoteSystem->index());
   if (!found || found->ethAddr == remoteSystem->ethAddr()) return;
   doAskNoMore(remoteSystem->index());
   doAsk(remoteSystem);
}

void PoePortStatusSm::handleRefresh() {
   parent_->doNote(intfId());
}

void PoePortStatusSm::doAsk(const RemoteSystem::PtrConst& remoteSystem) {
   const Wirekit::EthAddr& ethAddr = remoteSystem->ethAddr();
   const int* from = askingFrom_.find(ethAddr);
   askingFrom_.insert(ethAddr, from ? *from + 1 : 1);
   asking_.insert(remoteSystem->index(), {remoteSystem, ethAddr});
   doWatch(remoteSystem);
   doFollowRefresh();
   parent_->doNote(intfId());
}

void PoePortStatusSm::doAskNoMore(int index) {
   Wirekit::EthAddr ethAddr = asking_.find(index)->ethAddr;
   asking_.erase(index);
   int left = *askingFrom_.find(ethAddr) - 1;
   if (left) {
      askingFrom_.insert(ethAddr, left);
   } else {
      askingFrom_.erase(ethAddr);
   }
   doFollowRefresh();
   parent_->doNote(intfId());
}

// Where several ask, and all from one address, the one heard last is answered. Everywhere else a
// refresh decides nothing, and is to cost nothing.
void PoePortStatusSm::doFollowRefresh() {
   bool follows = asking_.size() > 1 && askingFrom_.size() == 1;
   if (follows == followsRefresh_) return;
   followsRefresh_ = follows;
   for (auto [index, one] : asking_) doWatch(one.remoteSystem);
}

void PoePortStatusSm::doWatch(const RemoteSystem::PtrConst& remoteSystem) {
   unwatch(remoteSystem);
   on(remoteSystem, RemoteSystem::powerViaMdiTlvReceivedAttr, &PoePortStatusSm::handlePowerViaMdi);
   on(remoteSystem, RemoteSystem::powerViaMdiInfoAttr, &PoePortStatusSm::handlePowerViaMdi);
   if (!asking_.find(remoteSystem->index())) return;
   on(remoteSystem, RemoteSystem::ethAddrAttr, &PoePortStatusSm::handleEthAddr);
   if (followsRefresh_) {
      on(remoteSystem, RemoteSystem::lastRefreshTimeAttr, &PoePortStatusSm::handleRefresh);
   }
}

}  // namespace Lldp::Agent::Input
