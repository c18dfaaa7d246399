#include "Lldp/LldpInputSm/MgmtEthPhyIntfStatusSm.h"

#include "Lldp/LldpInputSm/Root.h"
#include "Rex/Assert.h"
#include "Rex/Trace.h"
#include "Wirekit/MgmtIntfId.h"

namespace Lldp::Agent::Input {
namespace {

const Rex::TraceHandle trace("LldpAgent", false);

// What a frame has around its payload: the Ethernet header and the frame check sequence.
constexpr int framing = 18;

bool isMgmtIntf(const Wirekit::IntfId& intfId) {
   return Wirekit::MgmtIntfId::isMgmtIntfId(intfId);
}

}  // namespace

MgmtEthPhyIntfStatusSm::MgmtEthPhyIntfStatusSm(
    Interface::EthPhyIntfStatus::PtrConst ethPhyIntfStatus, Rex::Ptr<Root> root)
    : ethPhyIntfStatus_(std::move(ethPhyIntfStatus)), root_(std::move(root)) {
   on(ethPhyIntfStatus_, Interface::EthPhyIntfStatus::maxMtuAttr,
      &MgmtEthPhyIntfStatusSm::handleMaxMtu);

   handleInitialized();
}

MgmtEthPhyIntfStatusSm::~MgmtEthPhyIntfStatusSm() = default;

void MgmtEthPhyIntfStatusSm::handleInitialized() {
   TRACE(trace, 8, "MgmtEthPhyIntfStatusSm::handleInitialized() for " << intfId());
   REX_ASSERT(isMgmtIntf(intfId()));
   handleMaxMtu();
}

void MgmtEthPhyIntfStatusSm::handleMaxMtu() {
   TRACE(trace, 8, "MgmtEthPhyIntfStatusSm::handleMaxMtu() for " << intfId());
   if (auto localPort = root_->localSystem()->localPort(intfId())) {
      localPort->maximumFrameSizeInfoIs(
          {static_cast<uint16_t>(ethPhyIntfStatus_->maxMtu() + framing)});
   }
}

}  // namespace Lldp::Agent::Input
