#include "host/Watch/LldpStatusDirSm.h"

#include "Statestore/Cell.h"

namespace Host {

LldpStatusDirSm::LldpStatusDirSm(Rex::Dir::PtrConst dir, LldpEvents& events)
    : dir_(std::move(dir)), cell_(Rex::format("%d", Cell::cellId())), events_(events) {
   on(dir_, Rex::Dir::entityPtrAttr, &LldpStatusDirSm::handleEntry);

   handleEntry(cell_);
}

void LldpStatusDirSm::handleEntry(const Rex::String& name) {
   if (name != cell_) return;
   auto standing = lldpStatusSm_.get();
   auto status = Rex::dynamicPtr<Lldp::Status const>(dir_->entityPtr(cell_));
   if (standing && standing->status() == status) return;
   if (standing) {
      standing->handleGone();
      lldpStatusSm_.reset();
   }
   if (status) lldpStatusSm_.make(status, events_);
}

void LldpStatusDirSm::tellStanding(const TellStanding& tell) const {
   if (lldpStatusSm_.get()) lldpStatusSm_.get()->tellStanding(tell);
}

}  // namespace Host
