#include "Lldp/LldpInputSm/ActiveEthIntfStatusDirSm.h"

#include "Lldp/LldpInputSm/IntfKinds.h"
#include "Lldp/LldpInputSm/Root.h"
#include "Rex/Assert.h"
#include "Rex/Trace.h"

namespace Lldp::Agent::Input {
namespace {

const Rex::TraceHandle trace("LldpAgent", false);

}  // namespace

ActiveEthIntfStatusDirSm::ActiveEthIntfStatusDirSm(
    Interface::EthLagIntfStatusDir::PtrConst ethLagIntfStatusDir,
    Interface::AllEthPhyIntfStatusDir::PtrConst ethPhyIntfStatusDir,
    Bridging::HwCapabilities::PtrConst bridgingHwCapabilities, Rex::Ptr<Root> root)
    : ethLagIntfStatusDir_(std::move(ethLagIntfStatusDir)),
      ethPhyIntfStatusDir_(std::move(ethPhyIntfStatusDir)),
      bridgingHwCapabilities_(std::move(bridgingHwCapabilities)),
      root_(std::move(root)) {
   on(ethPhyIntfStatusDir_, Interface::AllEthPhyIntfStatusDir::intfStatusAttr,
      &ActiveEthIntfStatusDirSm::handlePhyIntfStatus);
   // Here: the groups of ethLagIntfStatusDir.

   handleInitialized();
}

ActiveEthIntfStatusDirSm::~ActiveEthIntfStatusDirSm() = default;

void ActiveEthIntfStatusDirSm::handleInitialized() {
   TRACE(trace, 8, "ActiveEthIntfStatusDirSm::handleInitialized()");
   for (auto [intfId, row] : ethPhyIntfStatusDir_->intfStatus()) handlePhyIntfStatus(intfId);
   // Here: the link aggregation groups, after the ports.
}

void ActiveEthIntfStatusDirSm::handlePhyIntfStatus(const Wirekit::IntfId& intfId) {
   TRACE(trace, 8, "ActiveEthIntfStatusDirSm::handlePhyIntfStatus( " << intfId << " )");
   if (!lldpCapable(intfId)) return;
   if (auto intfStatus = ethPhyIntfStatusDir_->intfStatus(intfId)) {
      ethPhyIntfStatusSmIs(intfStatus, this);
   } else {
      ethPhyIntfStatusSmDel(intfId);
   }
}

Rex::Ptr<EthPhyIntfStatusSm> ActiveEthIntfStatusDirSm::ethPhyIntfStatusSmIs(
    const Interface::EthPhyIntfStatus::PtrConst& intfStatus, ActiveEthIntfStatusDirSm* parent) {
   if (auto standing = ethPhyIntfStatusSm_.get(intfStatus->intfId())) {
      REX_ASSERT(standing->intfStatus() == intfStatus);
      return standing;
   }
   return ethPhyIntfStatusSm_.make(intfStatus->intfId(), intfStatus, parent);
}

Rex::Ptr<MgmtEthPhyIntfStatusSm> ActiveEthIntfStatusDirSm::mgmtEthPhyIntfStatusSmIs(
    const Interface::EthPhyIntfStatus::PtrConst& intfStatus, const Rex::Ptr<Root>& root) {
   if (auto standing = mgmtEthPhyIntfStatusSm_.get(intfStatus->intfId())) {
      REX_ASSERT(standing->ethPhyIntfStatus() == intfStatus);
      return standing;
   }
   return mgmtEthPhyIntfStatusSm_.make(intfStatus->intfId(), intfStatus, root);
}

void ActiveEthIntfStatusDirSm::doClose() {
   TRACE(trace, 8, "ActiveEthIntfStatusDirSm::doClose()");
   for (auto [intfId, sm] : ethPhyIntfStatusSm()) ethPhyIntfStatusSmDel(intfId);
   // Here: the link aggregation groups.
}

}  // namespace Lldp::Agent::Input
