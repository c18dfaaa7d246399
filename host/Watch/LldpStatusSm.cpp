#include "host/Watch/LldpStatusSm.h"

#include <utility>

namespace Host {

LldpStatusSm::LldpStatusSm(Lldp::Status::PtrConst status, LldpEvents& events)
    : status_(std::move(status)), events_(events) {
   on(status_, Lldp::Status::portStatusAttr, &LldpStatusSm::handlePortStatus);
   on(status_, Lldp::Status::remTablesLastChangeTimeAttr, &LldpStatusSm::handleLastChangeTime);

   handleInitialized();
}

void LldpStatusSm::handleInitialized() {
   for (auto [intfId, row] : status_->portStatus()) handlePortStatus(intfId);
}

void LldpStatusSm::handlePortStatus(const Wirekit::IntfId& intfId) {
   auto standing = portStatusSm_.get(intfId);
   auto portStatus = status_->portStatus(intfId);
   if (standing && standing->portStatus() == portStatus) return;
   if (standing) {
      standing->handleGone();
      portStatusSm_.erase(intfId);
   }
   if (portStatus) portStatusSm_.make(intfId, portStatus, *this);
}

// Moves after all attributes of a neighbour are written.
void LldpStatusSm::handleLastChangeTime() {
   for (const auto& neighbor : std::exchange(changed_, {})) neighbor->tellChanged();
}

void LldpStatusSm::tellStanding(const TellStanding& tell) const {
   for (auto [intfId, sm] : portStatusSm_.all()) sm->tellStanding(tell);
}

void LldpStatusSm::handleGone() {
   for (auto [intfId, sm] : portStatusSm_.all()) sm->handleGone();
}

void LldpStatusSm::doClose() {
   changed_.clear();
   portStatusSm_.clear();
}

}  // namespace Host
