#include "Lldp/LldpInputSm/EthPhyIntfStatusSm.h"

#include "Lldp/LldpInputSm/ActiveEthIntfStatusDirSm.h"
#include "Lldp/LldpInputSm/IntfKinds.h"
#include "Lldp/LldpInputSm/Lag.h"
#include "Lldp/LldpInputSm/PortConfigSync.h"
#include "Lldp/LldpInputSm/Root.h"
#include "Rex/System.h"
#include "Rex/Trace.h"
#include "Statestore/Cell.h"
#include "Wirekit/MgmtIntfId.h"

namespace Lldp::Agent::Input {
namespace {

const Rex::TraceHandle trace("LldpAgent", false);

}  // namespace

EthPhyIntfStatusSm::EthPhyIntfStatusSm(Interface::EthPhyIntfStatus::PtrConst intfStatus,
                                       ActiveEthIntfStatusDirSm* parent)
    : intfStatus_(std::move(intfStatus)), parent_(parent) {
   on(intfStatus_, Interface::EthPhyIntfStatus::forwardingModelAttr,
      &EthPhyIntfStatusSm::handleForwardingModel);

   handleForwardingModel();
}

EthPhyIntfStatusSm::~EthPhyIntfStatusSm() = default;

void EthPhyIntfStatusSm::handleForwardingModel() {
   TRACE(trace, 8,
         "EthPhyIntfStatusSm::handleForwardingModel() "
             << "for interface " << intfId()
             << " with forwardingModel: " << intfStatus_->forwardingModel());
   if (passes()) {
      doPresent();
   } else {
      doClose();  // the machine itself goes on watching
   }
}

// A port that 802.1X still holds back takes part while its bypass for LLDP is on.
bool EthPhyIntfStatusSm::passes() const {
   bool bypass = parent_->root()->identityDot1xStatusSm()->identityDot1xStatus()->lldpBypass();
   auto threshold =
       bypass ? Interface::intfForwardingUnauthorized : Interface::intfForwardingBridged;
   return intfStatus_->forwardingModel() >= threshold;
}

// The engine's machine comes with packet access, so everything that it reads stands before that is
// asked for.
void EthPhyIntfStatusSm::doPresent() {
   const auto& root = parent_->root();
   if (intfStatus_->forwardingModel() == Interface::intfForwardingUnauthorized) {
      TRACE(trace, 5,
            "Dot1x's LLDP bypass enabled, using interface ( "
                << intfId() << " ) with forwardingModel: " << intfStatus_->forwardingModel());
   }
   auto portConfig = root->config()->portConfigIs(intfId());
   auto localPort = root->localSystem()->localPortIs(intfId());
   doFillLocalPort(localPort);
   syncPortConfig(portConfig, root);
   if (auto sm = root->inputSm()->ethPhyIntfConfigSm(intfId())) sm->doSyncLocalPort(localPort);
   root->inputSm()->doSyncLocalPort(localPort);
   syncLinkAggregationInfo(localPort, root);

   // The other supervisor serves its own management port.
   if (isLocalMgmtIntf(intfId(), 3 - Cell::cellId())) return;
   if (!root->status()->portStatusHas(intfId())) {
      root->status()->portStatusIs(intfId(), Rex::System::currentTime());
   }
   root->desiredIntfDir()->intfDesiredIs(intfId(), true);
}

void EthPhyIntfStatusSm::doFillLocalPort(const LocalPort::Ptr& localPort) {
   localPort->initilizeLocalPortPoeInfo();
   localPort->portIdentifierIs({PortIdSubtype::interfaceName, PortId(intfId().stringValue())});
   LinkAggregationInfo info;
   if (Wirekit::MgmtIntfId::isMgmtIntfId(intfId())) {
      parent_->mgmtEthPhyIntfStatusSmIs(intfStatus_, parent_->root());
   } else {
      info.status.aggCapableIs(true);
      localPort->maximumFrameSizeInfoIs({parent_->bridgingHwCapabilities()->maxFrameSize()});
   }
   localPort->linkAggregationInfoIs(info);
}

// Harmless for rows that are gone already.
void EthPhyIntfStatusSm::doClose() {
   TRACE(trace, 8, "EthPhyIntfStatusSm::doClose for " << intfId());
   const auto& root = parent_->root();
   if (Wirekit::MgmtIntfId::isMgmtIntfId(intfId())) parent_->mgmtEthPhyIntfStatusSmDel(intfId());
   root->desiredIntfDir()->intfDesiredDel(intfId());
   root->config()->portConfigDel(intfId());
   root->status()->portStatusDel(intfId());
   root->localSystem()->localPortDel(intfId());
}

}  // namespace Lldp::Agent::Input
