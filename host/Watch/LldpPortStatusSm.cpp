#include "host/Watch/LldpPortStatusSm.h"

namespace Host {

LldpPortStatusSm::LldpPortStatusSm(Lldp::PortStatus::PtrConst portStatus, bool own,
                                   LldpStatusSm& parent)
    : portStatus_(std::move(portStatus)), own_(own), parent_(parent) {
   on(portStatus_, Lldp::PortStatus::remoteSystemAttr, &LldpPortStatusSm::handleRemoteSystem);

   handleInitialized();
}

void LldpPortStatusSm::handleInitialized() {
   for (auto [index, row] : portStatus_->remoteSystem()) handleRemoteSystem(index);
}

void LldpPortStatusSm::handleRemoteSystem(int index) {
   auto standing = neighborSm_.get(index);
   auto remoteSystem = portStatus_->remoteSystem(index);
   if (standing && standing->remoteSystem() == remoteSystem) return;
   if (standing) {
      standing->tellGone();
      neighborSm_.erase(index);
   }
   if (remoteSystem) {
      neighborSm_.make(index, portStatus_->intfId(), remoteSystem, own_, parent_)->tellAdded();
   }
}

void LldpPortStatusSm::tellStanding(const TellStanding& tell) const {
   for (auto [index, sm] : neighborSm_.all()) sm->tellStanding(tell);
}

void LldpPortStatusSm::handleGone() {
   for (auto [index, sm] : neighborSm_.all()) sm->tellGone();
}

}  // namespace Host
