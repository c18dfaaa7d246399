#include "Lldp/LldpInputSm/RemTablesClearRequestSm.h"

#include "Lldp/LldpInputSm/Root.h"
#include "Lldp/LogEvents.h"
#include "Rex/System.h"
#include "Rex/Trace.h"
#include "RingLog/RingLog.h"

namespace Lldp::Agent::Input {
namespace {

const Rex::TraceHandle trace("LldpAgent", false);

}  // namespace

RemTablesClearRequestSm::RemTablesClearRequestSm(
    Lldp::RemTablesCliConfig::PtrConst remTablesCliConfig, Rex::Ptr<Root> root)
    : remTablesCliConfig_(std::move(remTablesCliConfig)), root_(std::move(root)) {
   on(remTablesCliConfig_, RemTablesCliConfig::remTablesClearRequestAttr,
      &RemTablesClearRequestSm::handleRemTablesClearRequest);

   handleInitialized();
}

RemTablesClearRequestSm::~RemTablesClearRequestSm() = default;

// A request that came while the agent was down is still to be carried out.
void RemTablesClearRequestSm::handleInitialized() {
   TRACE(trace, 8, "RemTablesClearRequestSm::handleInitialized()");
   handleRemTablesClearRequest();
}

// Counts as none of the ways in which a neighbour is lost, so no counter moves. What is remembered
// is the request's own time, so that the next comparison is on the same clock.
void RemTablesClearRequestSm::handleRemTablesClearRequest() {
   TRACE(trace, 8, "RemTablesClearRequestSm::handleRemTablesClearRequest()");
   RemTablesClearRequest request = remTablesCliConfig_->remTablesClearRequest();
   double last = root_->remTablesStatus()->remTablesLastClearTime();
   double now = Rex::System::currentTime();
   if (!(request.requestTime > last)) return;
   RINGLOG(trace, 4,
           "handleRemTablesClearRequest() at " << now << ": handling request from "
                                               << request.requestTime
                                               << ", because last clear time is " << last << ".");
   for (auto [intfId, portStatus] : root_->status()->portStatus()) {
      portStatus->remoteSystemDelAll();
      portStatus->remoteSystemByMsapDelAll();
   }
   root_->status()->remTablesLastChangeTimeIs(now);
   root_->remTablesStatus()->remTablesLastClearTimeIs(request.requestTime);
   Rex::log(LLDP_REMOTE_TABLES_CLEARED, request.requesterName, request.requesterLine);
}

}  // namespace Lldp::Agent::Input
