// The operator's requests to forget classifications. Only what LLDP learned is forgotten.
#include "Lldp/LldpNbrClassificationSm/NbrClassificationSm.h"
#include "Rex/System.h"
#include "Rex/Trace.h"

namespace Lldp::Agent::NbrClassification {
namespace {

const Rex::TraceHandle trace("LldpNbrClassification", false);

using Identity::NbrClassification::ClearRequest;

}  // namespace

// A request runs once, unless it is withdrawn and entered again.
void NbrClassificationSm::handleClassificationClearRequest(const Rex::String& reqId) {
   ClearRequest request = identityCliConfig_->clearRequest(reqId);
   if (request == ClearRequest()) {
      nbrClassficationStatus_->clearRequestTimeDel(reqId);
      return;
   }
   if (nbrClassficationStatus_->clearRequestTime(reqId) != 0) {
      TRACE(trace, 8, "Neighbor Classfication Clean request ignored (already handled)");
      return;
   }
   bool removed = request.targetType == ClearRequest::byEthAddr
                      ? handleClassificationClearRequestMac(request.target)
                  : request.targetType == ClearRequest::byIntf
                      ? handleClassificationClearRequestInterface(request.target)
                      : handleClassificationClearRequestAll();
   nbrClassficationStatus_->clearRequestTimeIs(reqId, Rex::System::currentTime());
   if (removed) {
      updateClassificationStatus();
      TRACE(trace, 8,
            "Neighbor classification (" << request.target << ") cleared by " << request.clearedBy
                                        << " on " << request.clearedOn);
   } else {
      TRACE(trace, 8, "No neighbor classfication for given target " << request.target);
   }
}

bool NbrClassificationSm::handleClassificationClearRequestAll() {
   bool removed = false;
   for (auto [ethAddr, neighbor] : lldpNeighbor_) {
      removed |= unregisterNeighbor(ethAddr, neighbor.intfId);
   }
   return removed;
}

// The interface's name has to be given exactly.
bool NbrClassificationSm::handleClassificationClearRequestInterface(const Rex::String& target) {
   bool removed = false;
   for (auto [ethAddr, neighbor] : lldpNeighbor_) {
      if (neighbor.intfId.stringValue() == target) {
         removed |= unregisterNeighbor(ethAddr, neighbor.intfId);
      }
   }
   return removed;
}

bool NbrClassificationSm::handleClassificationClearRequestMac(const Rex::String& target) {
   Wirekit::EthAddr ethAddr;
   if (!Wirekit::EthAddr::fromText(target.view(), ethAddr)) return false;
   const Neighbor* found = lldpNeighbor_.find(ethAddr);
   return found && unregisterNeighbor(ethAddr, Wirekit::IntfId(found->intfId));
}

}  // namespace Lldp::Agent::NbrClassification
