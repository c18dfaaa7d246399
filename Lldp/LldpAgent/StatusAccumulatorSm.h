// Merges the status of this cell and that of the other one into the one table that readers look at.
// It copies no neighbour: the merged table refers to the ports of both.
#pragma once

#include "Rex/Dir.h"
#include "Rex/StateMachine.h"
#include "model/Status.h"

namespace Lldp::Agent {

class StatusAccumulatorSm : public Rex::StateMachine {
 public:
   // `lldpStatusRemote` is null: the machine looks for the other cell's entry in `lldpStatusDir`.
   StatusAccumulatorSm(Lldp::Status::PtrConst lldpStatusLocal,
                       Lldp::Status::PtrConst lldpStatusRemote, Rex::Dir::Ptr lldpStatusDir,
                       Lldp::AllStatus::Ptr allLldpStatus);

   const Lldp::Status::PtrConst& lldpStatusRemote() const { return lldpStatusRemote_; }
   const Rex::String& peerCellId() const { return peerCellId_; }

 private:
   void doWatch(const Lldp::Status::PtrConst& status);
   void handleInitialized();
   void handlePeerLldpStatus(const Rex::String& name);
   void handleLldpStatusRemote();
   void lldpStatusRemoteIs(const Lldp::Status::PtrConst& status);
   void handleIntfId(const Wirekit::IntfId& intfId);
   void handleRemTablesLastChangeTime();
   void handleRemTablesInserts();
   void handleRemTablesDeletes();
   void handleRemTablesDrops();
   void handleRemTablesAgeouts();
   void handleMgmtAddrVrf();
   // The counter of this cell, and the other's with it.
   uint32_t sum(const uint32_t& (Lldp::StatusBase::*counter)() const) const;

   const Lldp::Status::PtrConst lldpStatusLocal_;
   Lldp::Status::PtrConst lldpStatusRemote_;
   const Rex::Dir::Ptr lldpStatusDir_;
   const Lldp::AllStatus::Ptr allLldpStatus_;
   Rex::String peerCellId_;
};

}  // namespace Lldp::Agent
