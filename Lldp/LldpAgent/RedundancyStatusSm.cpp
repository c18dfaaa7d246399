#include "Lldp/LldpAgent/RedundancyStatusSm.h"

#include "Lldp/LldpAgent/Agent.h"
#include "Rex/Trace.h"

namespace Lldp::Agent {
namespace {

const Rex::TraceHandle trace("LldpAgent", false);

}  // namespace

RedundancyStatusSm::RedundancyStatusSm(Redundancy::RedundancyStatus::PtrConst redundancyStatus,
                                       Agent* agent)
    : redundancyStatus_(std::move(redundancyStatus)), agent_(agent) {
   on(redundancyStatus_, Redundancy::RedundancyStatus::protocolAttr,
      &RedundancyStatusSm::handleRedundancyStatus);
   on(redundancyStatus_, Redundancy::RedundancyStatus::modeAttr,
      &RedundancyStatusSm::handleRedundancyStatus);

   handleRedundancyStatus();
}

// Under hot standby every mode but active counts as standby; under any other protocol this agent
// only runs where it is active.
void RedundancyStatusSm::handleRedundancyStatus() {
   TRACE(trace, 8, "RedundancyStatusSm::handleRedundancyStatus()");
   bool hotStandby = redundancyStatus_->protocol() == Redundancy::protocolHotStandby;
   agent_->standbyModeIs(hotStandby && redundancyStatus_->mode() != Redundancy::modeActive);
}

}  // namespace Lldp::Agent
