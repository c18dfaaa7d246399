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
   on(ethLagIntfStatusDir_, Interface::EthLagIntfStatusDir::intfStatusAttr,
      &ActiveEthIntfStatusDirSm::handleLagIntfStatus);

   handleInitialized();
}

ActiveEthIntfStatusDirSm::~ActiveEthIntfStatusDirSm() = default;

void ActiveEthIntfStatusDirSm::handleInitialized() {
   TRACE(trace, 8, "ActiveEthIntfStatusDirSm::handleInitialized()");
   for (auto [intfId, row] : ethPhyIntfStatusDir_->intfStatus()) handlePhyIntfStatus(intfId);
   if (!ethLagIntfStatusDir_) return;
   for (auto [intfId, row] : ethLagIntfStatusDir_->intfStatus()) handleLagIntfStatus(intfId);
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

// The old machine goes first, so that a group which is published anew under the same name gets a
// machine that reads it: its members leave and join again.
void ActiveEthIntfStatusDirSm::handleLagIntfStatus(const Wirekit::IntfId& intfId) {
   TRACE(trace, 8, "ActiveEthIntfStatusDirSm::handleLagIntfStatus( " << intfId << " )");
   ethLagIntfStatusSmDel(intfId);
   if (auto row = ethLagIntfStatusDir_->intfStatus(intfId)) {
      ethLagIntfStatusSmIs(intfId, row, root_);
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
   for (auto [intfId, sm] : ethLagIntfStatusSm()) ethLagIntfStatusSmDel(intfId);
}

}  // namespace Lldp::Agent::Input
