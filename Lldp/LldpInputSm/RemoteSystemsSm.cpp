#include "Lldp/LldpInputSm/RemoteSystemsSm.h"

namespace Lldp::Agent::Input {

RemoteSystemsSm::RemoteSystemsSm(Lldp::PortStatus::PtrConst portStatus)
    : portStatus_(std::move(portStatus)) {
   on(portStatus_, PortStatus::remoteSystemAttr, &RemoteSystemsSm::handleRemoteSystem);
}

RemoteSystemsSm::~RemoteSystemsSm() = default;

void RemoteSystemsSm::doFollow() {
   for (auto [index, remoteSystem] : portStatus_->remoteSystem()) handleRemoteSystem(index);
}

// An index that was given anew within one reaction is another neighbour.
void RemoteSystemsSm::handleRemoteSystem(int index) {
   RemoteSystem::PtrConst standing = portStatus_->remoteSystem(index);
   const RemoteSystem::PtrConst* found = followed_.find(index);
   if (found && *found == standing) return;
   if (found) {
      RemoteSystem::PtrConst gone = *found;
      followed_.erase(index);
      unwatch(gone);
      doRemove(gone);
   }
   if (standing) {
      followed_.insert(index, standing);
      doAdd(standing);
   }
}

}  // namespace Lldp::Agent::Input
