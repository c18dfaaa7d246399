#include "Lldp/LldpNbrClassificationSm/NbrClassificationIntfSm.h"

#include "Lldp/LldpNbrClassificationSm/NbrClassificationSm.h"
#include "Rex/Trace.h"

namespace Lldp::Agent::NbrClassification {
namespace {

const Rex::TraceHandle trace("LldpNbrClassification", false);

}  // namespace

NbrClassificationIntfSm::NbrClassificationIntfSm(
    Interface::EthPhyIntfStatus::PtrConst ethIntfStatus, const Wirekit::IntfId& intfId,
    NbrClassificationSm* nbrClassificationSm)
    : ethIntfStatus_(std::move(ethIntfStatus)),
      intfId_(intfId),
      nbrClassificationSm_(nbrClassificationSm) {
   on(ethIntfStatus_, Interface::EthPhyIntfStatus::linkStatusAttr,
      &NbrClassificationIntfSm::handleLinkStatus);
}

NbrClassificationIntfSm::~NbrClassificationIntfSm() = default;

// The cleanup may close this machine, which the running reaction keeps alive.
void NbrClassificationIntfSm::handleLinkStatus() {
   Interface::LinkStatus linkStatus = ethIntfStatus_->linkStatus();
   TRACE(trace, 8, "linkStatus: " << static_cast<int>(linkStatus));
   if (nbrClassificationSm_->keepsClassificationIntfDown()) return;
   if (linkStatus == Interface::linkDown) {
      nbrClassificationSm_->doNeighborClassficationCleanup(Wirekit::IntfId(intfId_));
   }
}

}  // namespace Lldp::Agent::NbrClassification
