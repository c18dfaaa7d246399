// Keeps a machine for each port with LLDP, and lets neighbours tell their changes when a change of
// the tables is complete.
#pragma once

#include <vector>

#include "Rex/Owned.h"
#include "Rex/StateMachine.h"
#include "host/Watch/LldpPortStatusSm.h"
#include "model/Status.h"

namespace Host {

class LldpEvents;

class LldpStatusSm : public Rex::StateMachine {
 public:
   LldpStatusSm(Lldp::Status::PtrConst status, LldpEvents& events);

   const Lldp::Status::PtrConst& status() const { return status_; }
   LldpEvents& events() const { return events_; }
   void tellStanding(const TellStanding& tell) const;
   // The status has left, and all neighbours with it.
   void handleGone();
   // Has the neighbour tell its changes as soon as they are complete.
   void changedIs(const Rex::Ptr<NeighborSm>& neighbor) { changed_.push_back(neighbor); }

 private:
   void handleInitialized();
   void handlePortStatus(const Wirekit::IntfId& intfId);
   void handleLastChangeTime();
   void doClose() override;

   const Lldp::Status::PtrConst status_;
   LldpEvents& events_;
   std::vector<Rex::Ptr<NeighborSm>> changed_;
   Rex::OwnedMachines<LldpPortStatusSm, Wirekit::IntfId> portStatusSm_;
};

}  // namespace Host
