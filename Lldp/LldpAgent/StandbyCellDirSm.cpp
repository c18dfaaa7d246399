#include "Lldp/LldpAgent/StandbyCellDirSm.h"

#include "Rex/Trace.h"
#include "Statestore/Cell.h"
#include "model/Status.h"

namespace Lldp::Agent {
namespace {

const Rex::TraceHandle trace("LldpAgent", false);

}  // namespace

StandbyCellDirSm::StandbyCellDirSm(Rex::Dir::PtrConst cellDir, Rex::Dir::Ptr lldpStatusDir)
    : cellDir_(std::move(cellDir)), lldpStatusDir_(std::move(lldpStatusDir)) {
   on(cellDir_, Rex::Dir::entityPtrAttr, &StandbyCellDirSm::handleEntry);

   handleInitialized();
}

void StandbyCellDirSm::handleInitialized() {
   TRACE(trace, 8, "StandbyCellDirSm::handleInitialized()");
   peerCellId_ = Rex::format("%d", 3 - Cell::cellId());
   handleStandbyCellDir(peerCellId_);
}

void StandbyCellDirSm::handleEntry(const Rex::String& name) {
   handleStandbyCellDir(name);
}

// A status that stands is left alone, and with it the peer's counters.
void StandbyCellDirSm::handleStandbyCellDir(const Rex::String& name) {
   TRACE(trace, 8, "StandbyCellDirSm::handleStandbyCellDir( " << name << " )");
   if (name != peerCellId_) return;
   if (cellDir_->entityPtrHas(name)) {
      if (Rex::dynamicPtr<Lldp::Status>(lldpStatusDir_->entityPtr(name))) {
         TRACE(trace, 5, " Skipping lldpStatusDir for cell: " << name);
         return;
      }
      TRACE(trace, 5, " Adding lldpStatusDir entry for cell: " << name);
      lldpStatusDir_->createEntity(name, "Lldp::Status");
   } else if (lldpStatusDir_->entityPtrHas(name)) {
      TRACE(trace, 5, " Removing lldpStatusDir entry for cell: " << name);
      lldpStatusDir_->deleteEntity(name);
   }
}

}  // namespace Lldp::Agent
