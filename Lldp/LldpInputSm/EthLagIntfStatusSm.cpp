#include "Lldp/LldpInputSm/EthLagIntfStatusSm.h"

#include "Lldp/LldpInputSm/Lag.h"
#include "Lldp/LldpInputSm/Root.h"
#include "Rex/Trace.h"

namespace Lldp::Agent::Input {
namespace {

const Rex::TraceHandle trace("LldpAgent", false);

}  // namespace

EthLagIntfStatusSm::EthLagIntfStatusSm(Interface::EthLagIntfStatus::PtrConst ethLagIntfStatus,
                                       Rex::Ptr<Root> root)
    : ethLagIntfStatus_(std::move(ethLagIntfStatus)), root_(std::move(root)) {
   on(ethLagIntfStatus_, Interface::EthLagIntfStatus::memberAttr,
      &EthLagIntfStatusSm::handleMember);

   handleInitialized();
}

EthLagIntfStatusSm::~EthLagIntfStatusSm() = default;

void EthLagIntfStatusSm::handleInitialized() {
   TRACE(trace, 8, "EthLagIntfStatusSm::handleInitialized() for " << intfId());
   for (auto [memberId, member] : ethLagIntfStatus_->member()) {
      addLagMember(memberId, intfId(), root_);
   }
}

void EthLagIntfStatusSm::handleMember(const Wirekit::IntfId& memberId) {
   TRACE(trace, 8, "EthLagIntfStatusSm::handleMember( " << memberId << " ) for " << intfId());
   if (ethLagIntfStatus_->memberHas(memberId)) {
      addLagMember(memberId, intfId(), root_);
   } else {
      doRemove(memberId);
   }
}

// A member that came and went within one reaction, before this machine stood, was never counted.
void EthLagIntfStatusSm::doRemove(const Wirekit::IntfId& memberId) {
   auto lags = root_->portToLagsMap(memberId);
   if (lags && lags->lagId(intfId())) removeLagMember(memberId, intfId(), root_);
}

void EthLagIntfStatusSm::doClose() {
   TRACE(trace, 8, "EthLagIntfStatusSm::doClose() for " << intfId());
   for (auto [memberId, member] : ethLagIntfStatus_->member()) doRemove(memberId);
}

}  // namespace Lldp::Agent::Input
