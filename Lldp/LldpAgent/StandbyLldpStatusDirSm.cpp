#include "Lldp/LldpAgent/StandbyLldpStatusDirSm.h"

#include "Lldp/LldpAgent/Agent.h"
#include "Rex/Trace.h"
#include "Statestore/Cell.h"

namespace Lldp::Agent {
namespace {

const Rex::TraceHandle trace("LldpAgent", false);

}  // namespace

StandbyLldpStatusDirSm::StandbyLldpStatusDirSm(Rex::Dir::PtrConst lldpStatusDir, Agent* agent)
    : lldpStatusDir_(std::move(lldpStatusDir)), agent_(agent) {
   void (StandbyLldpStatusDirSm::*handleEntry)(const Rex::String&) =
       &StandbyLldpStatusDirSm::handleLldpStatusDir;
   on(lldpStatusDir_, Rex::Dir::entityPtrAttr, handleEntry);

   handleInitialized();
   handleLldpStatusDir();  // harmless when repeated
}

void StandbyLldpStatusDirSm::handleInitialized() {
   TRACE(trace, 8, "StandbyLldpStatusDirSm::handleInitialized()");
   handleLldpStatusDir();
}

void StandbyLldpStatusDirSm::handleLldpStatusDir() {
   TRACE(trace, 8, "StandbyLldpStatusDirSm::handleLldpStatusDirSm()");
   for (auto [name, entity] : lldpStatusDir_->entityPtr()) handleLldpStatusDir(name);
}

void StandbyLldpStatusDirSm::handleLldpStatusDir(const Rex::String& name) {
   TRACE(trace, 8, "StandbyLldpStatusDirSm::handleLldpStatusDirSm( " << name << " )");
   if (lldpStatusLocalDirReady_) return;
   if (name == Rex::format("%d", Cell::cellId()) && lldpStatusDir_->entityPtrHas(name)) {
      agent_->doMountsCompleteStep2();
      lldpStatusLocalDirReadyIs(true);
   }
}

}  // namespace Lldp::Agent
