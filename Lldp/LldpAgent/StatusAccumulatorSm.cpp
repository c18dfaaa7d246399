#include "Lldp/LldpAgent/StatusAccumulatorSm.h"

#include <algorithm>

#include "Rex/Trace.h"
#include "Statestore/Cell.h"

namespace Lldp::Agent {
namespace {

const Rex::TraceHandle trace("LldpAgent", false);

}  // namespace

StatusAccumulatorSm::StatusAccumulatorSm(Lldp::Status::PtrConst lldpStatusLocal,
                                         Lldp::Status::PtrConst lldpStatusRemote,
                                         Rex::Dir::Ptr lldpStatusDir,
                                         Lldp::AllStatus::Ptr allLldpStatus)
    : lldpStatusLocal_(std::move(lldpStatusLocal)),
      lldpStatusRemote_(std::move(lldpStatusRemote)),
      lldpStatusDir_(std::move(lldpStatusDir)),
      allLldpStatus_(std::move(allLldpStatus)) {
   doWatch(lldpStatusLocal_);
   on(lldpStatusLocal_, Lldp::Status::mgmtAddrVrfAttr, &StatusAccumulatorSm::handleMgmtAddrVrf);
   doWatch(lldpStatusRemote_);
   on(lldpStatusDir_, Rex::Dir::entityPtrAttr, &StatusAccumulatorSm::handlePeerLldpStatus);

   handleInitialized();
}

// What is watched of either status.
void StatusAccumulatorSm::doWatch(const Lldp::Status::PtrConst& status) {
   using Status = Lldp::Status;
   using Sm = StatusAccumulatorSm;
   on(status, Status::remTablesLastChangeTimeAttr, &Sm::handleRemTablesLastChangeTime);
   on(status, Status::remTablesInsertsAttr, &Sm::handleRemTablesInserts);
   on(status, Status::remTablesDeletesAttr, &Sm::handleRemTablesDeletes);
   on(status, Status::remTablesDropsAttr, &Sm::handleRemTablesDrops);
   on(status, Status::remTablesAgeoutsAttr, &Sm::handleRemTablesAgeouts);
   on(status, Status::portStatusAttr, &Sm::handleIntfId);
}

// The table may hold what an earlier process, or the other cell, left in it.
void StatusAccumulatorSm::handleInitialized() {
   TRACE(trace, 8, "StatusAccumulatorSm::handleInitialized()");
   peerCellId_ = Rex::format("%d", 3 - Cell::cellId());
   handlePeerLldpStatus(peerCellId_);
   for (auto [intfId, portStatus] : allLldpStatus_->portStatus()) {
      bool remote = lldpStatusRemote_ && lldpStatusRemote_->portStatusHas(intfId);
      if (!lldpStatusLocal_->portStatusHas(intfId) && !remote) {
         allLldpStatus_->portStatusDel(intfId);
      }
   }
   for (auto [intfId, portStatus] : lldpStatusLocal_->portStatus()) handleIntfId(intfId);
   handleLldpStatusRemote();
}

void StatusAccumulatorSm::handlePeerLldpStatus(const Rex::String& name) {
   TRACE(trace, 8, "StatusAccumulatorSm::handlePeerLldpStatus( " << name << " )");
   if (name != peerCellId_) return;
   if (lldpStatusDir_->entityPtrHas(name)) {
      lldpStatusRemoteIs(Rex::dynamicPtr<Lldp::Status const>(lldpStatusDir_->entityPtr(name)));
   } else if (lldpStatusRemote_) {
      // Also what this cell has a port of the same name for, which comes back with its next change.
      for (auto [intfId, portStatus] : lldpStatusRemote_->portStatus()) {
         allLldpStatus_->portStatusDel(intfId);
      }
      lldpStatusRemoteIs(nullptr);
   }
   handleLldpStatusRemote();
}

void StatusAccumulatorSm::handleLldpStatusRemote() {
   if (lldpStatusRemote_) {
      for (auto [intfId, portStatus] : lldpStatusRemote_->portStatus()) handleIntfId(intfId);
   }
   handleRemTablesInserts();
   handleRemTablesDeletes();
   handleRemTablesDrops();
   handleRemTablesAgeouts();
   handleRemTablesLastChangeTime();
   handleMgmtAddrVrf();
}

void StatusAccumulatorSm::lldpStatusRemoteIs(const Lldp::Status::PtrConst& status) {
   if (status == lldpStatusRemote_) return;
   if (lldpStatusRemote_) unwatch(lldpStatusRemote_);
   lldpStatusRemote_ = status;
   if (!status) return;
   doWatch(status);
   handleRemTablesLastChangeTime();
   handleRemTablesInserts();
   handleRemTablesDeletes();
   handleRemTablesDrops();
   handleRemTablesAgeouts();
}

// This cell's port wins.
void StatusAccumulatorSm::handleIntfId(const Wirekit::IntfId& intfId) {
   TRACE(trace, 8, "StatusAccumulatorSm::handleIntfId( " << intfId << " )");
   if (auto local = lldpStatusLocal_->portStatus(intfId)) {
      allLldpStatus_->portStatusIs(local);
   } else if (auto remote = lldpStatusRemote_ ? lldpStatusRemote_->portStatus(intfId) : nullptr) {
      allLldpStatus_->portStatusIs(remote);
   } else {
      allLldpStatus_->portStatusDel(intfId);
   }
}

void StatusAccumulatorSm::handleRemTablesLastChangeTime() {
   TRACE(trace, 8, "StatusAccumulatorSm::handleRemTablesLastChangeTime()");
   double local = lldpStatusLocal_->remTablesLastChangeTime();
   double remote = lldpStatusRemote_ ? lldpStatusRemote_->remTablesLastChangeTime() : local;
   allLldpStatus_->remTablesLastChangeTimeIs(std::max(local, remote));
}

void StatusAccumulatorSm::handleRemTablesInserts() {
   TRACE(trace, 8, "StatusAccumulatorSm::handleRemTablesInserts()");
   allLldpStatus_->remTablesInsertsIs(sum(&Lldp::StatusBase::remTablesInserts));
}

void StatusAccumulatorSm::handleRemTablesDeletes() {
   TRACE(trace, 8, "StatusAccumulatorSm::handleRemTablesDeletes()");
   allLldpStatus_->remTablesDeletesIs(sum(&Lldp::StatusBase::remTablesDeletes));
}

void StatusAccumulatorSm::handleRemTablesDrops() {
   TRACE(trace, 8, "StatusAccumulatorSm::handleRemTablesDrops()");
   allLldpStatus_->remTablesDropsIs(sum(&Lldp::StatusBase::remTablesDrops));
}

void StatusAccumulatorSm::handleRemTablesAgeouts() {
   TRACE(trace, 8, "StatusAccumulatorSm::handleRemTablesAgeouts()");
   allLldpStatus_->remTablesAgeoutsIs(sum(&Lldp::StatusBase::remTablesAgeouts));
}

void StatusAccumulatorSm::handleMgmtAddrVrf() {
   TRACE(trace, 8, "StatusAccumulatorSm::handleMgmtAddrVrf()");
   allLldpStatus_->mgmtAddrVrfIs(lldpStatusLocal_->mgmtAddrVrf());
}

uint32_t StatusAccumulatorSm::sum(const uint32_t& (Lldp::StatusBase::*counter)() const) const {
   uint32_t local = ((*lldpStatusLocal_).*counter)();
   return lldpStatusRemote_ ? local + ((*lldpStatusRemote_).*counter)() : local;
}

}  // namespace Lldp::Agent
