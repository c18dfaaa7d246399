#include "host/Watch/LldpStatusSm.h"

#include <utility>

#include "Statestore/Cell.h"

namespace Host {

LldpStatusSm::LldpStatusSm(Lldp::AllStatus::PtrConst all, Rex::Dir::PtrConst dir,
                           LldpEvents& events)
    : all_(std::move(all)),
      dir_(std::move(dir)),
      cell_(Rex::format("%d", Cell::cellId())),
      events_(events) {
   on(all_, Lldp::AllStatus::portStatusAttr, &LldpStatusSm::handlePortStatus);
   on(all_, Lldp::AllStatus::remTablesLastChangeTimeAttr, &LldpStatusSm::handleLastChangeTime);
   on(dir_, Rex::Dir::entityPtrAttr, &LldpStatusSm::handleEntry);

   handleInitialized();
}

void LldpStatusSm::handleInitialized() {
   handleEntry(cell_);
   for (auto [intfId, row] : all_->portStatus()) handlePortStatus(intfId);
}

void LldpStatusSm::handleEntry(const Rex::String& name) {
   if (name != cell_) return;
   auto status = Rex::dynamicPtr<Lldp::Status const>(dir_->entityPtr(cell_));
   if (status == own_) return;
   auto former = std::exchange(own_, status);
   if (former) {
      unwatch(former);
      for (auto [intfId, row] : former->portStatus()) handlePortStatus(intfId);
   }
   if (!own_) return;
   on(own_, Lldp::Status::portStatusAttr, &LldpStatusSm::handlePortStatus);
   on(own_, Lldp::Status::remTablesLastChangeTimeAttr, &LldpStatusSm::handleLastChangeTime);
   for (auto [intfId, row] : own_->portStatus()) handlePortStatus(intfId);
}

void LldpStatusSm::handlePortStatus(const Wirekit::IntfId& intfId) {
   auto standing = portStatusSm_.get(intfId);
   auto portStatus = all_->portStatus(intfId);
   if (!portStatus && own_) portStatus = own_->portStatus(intfId);
   if (standing && standing->portStatus() == portStatus) return;
   if (standing) {
      standing->handleGone();
      portStatusSm_.erase(intfId);
   }
   if (!portStatus) return;
   bool own = own_ && own_->portStatus(intfId) == portStatus;
   portStatusSm_.make(intfId, portStatus, own, *this);
}

// Moves after all attributes of a neighbour are written.
void LldpStatusSm::handleLastChangeTime() {
   for (const auto& neighbor : std::exchange(changed_, {})) neighbor->tellChanged();
}

void LldpStatusSm::tellStanding(const TellStanding& tell) const {
   for (auto [intfId, sm] : portStatusSm_.all()) sm->tellStanding(tell);
}

void LldpStatusSm::doClose() {
   changed_.clear();
   portStatusSm_.clear();
}

}  // namespace Host
