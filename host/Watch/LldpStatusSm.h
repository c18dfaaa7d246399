// Keeps a machine for each port with LLDP, of both supervisors where the merged table has them, and
// lets neighbours tell their changes when a change of the tables is complete.
#pragma once

#include <vector>

#include "Rex/Dir.h"
#include "Rex/Owned.h"
#include "Rex/StateMachine.h"
#include "host/Watch/LldpPortStatusSm.h"
#include "model/Status.h"

namespace Host {

class LldpEvents;

class LldpStatusSm : public Rex::StateMachine {
 public:
   // `dir` has the status of each supervisor. This one's comes with the agent, and is what stands
   // where nobody keeps a merged table.
   LldpStatusSm(Lldp::AllStatus::PtrConst all, Rex::Dir::PtrConst dir, LldpEvents& events);

   LldpEvents& events() const { return events_; }
   void tellStanding(const TellStanding& tell) const;
   // Has the neighbour tell its changes as soon as they are complete.
   void changedIs(const Rex::Ptr<NeighborSm>& neighbor) { changed_.push_back(neighbor); }

 private:
   void handleInitialized();
   void handleEntry(const Rex::String& name);
   void handlePortStatus(const Wirekit::IntfId& intfId);
   void handleLastChangeTime();
   void doClose() override;

   const Lldp::AllStatus::PtrConst all_;
   const Rex::Dir::PtrConst dir_;
   const Rex::String cell_;  // the name of this supervisor's entry
   LldpEvents& events_;
   Lldp::Status::PtrConst own_;
   std::vector<Rex::Ptr<NeighborSm>> changed_;
   Rex::OwnedMachines<LldpPortStatusSm, Wirekit::IntfId> portStatusSm_;
};

}  // namespace Host
