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
   for (auto [memberId, member] : ethLagIntfStatus_->member()) doAdd(memberId);
}

void EthLagIntfStatusSm::handleMember(const Wirekit::IntfId& memberId) {
   TRACE(trace, 8, "EthLagIntfStatusSm::handleMember( " << memberId << " ) for " << intfId());
   if (ethLagIntfStatus_->memberHas(memberId)) {
      doAdd(memberId);
   } else {
      doRemove(memberId);
   }
}

void EthLagIntfStatusSm::doAdd(const Wirekit::IntfId& memberId) {
   counted_.insert(memberId, true);
   addLagMember(memberId, intfId(), root_);
}

// The record, not the group, tells who was counted: within one reaction a member may come or go
// before this machine stands or after its group went.
void EthLagIntfStatusSm::doRemove(const Wirekit::IntfId& memberId) {
   Wirekit::IntfId removed = memberId;  // it may live in the record
   if (counted_.erase(removed)) removeLagMember(removed, intfId(), root_);
}

void EthLagIntfStatusSm::doClose() {
   TRACE(trace, 8, "EthLagIntfStatusSm::doClose() for " << intfId());
   for (auto [memberId, value] : counted_) doRemove(memberId);
}

}  // namespace Lldp::Agent::Input
