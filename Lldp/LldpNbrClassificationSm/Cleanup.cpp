// How long a classification outlives its source.
#include "Lldp/LldpNbrClassificationSm/NbrClassificationSm.h"
#include "Rex/Trace.h"

namespace Lldp::Agent::NbrClassification {
namespace {

const Rex::TraceHandle trace("LldpNbrClassification", false);

}  // namespace

// The pass that follows every frame.
void NbrClassificationSm::doNeighborClassficationCleanup() {
   for (auto [ethAddr, noted] : toCheck_) {
      toCheck_.erase(ethAddr);
      const Neighbor* found = lldpNeighbor_.find(ethAddr);
      if (!found) continue;
      Neighbor neighbor = *found;
      if (shouldNeighborBeRemoved(neighbor)) unregisterNeighbor(ethAddr, neighbor.intfId);
   }
   updateClassificationStatus();
}

void NbrClassificationSm::doNeighborClassficationCleanup(const Wirekit::IntfId& intfId) {
   for (auto [ethAddr, neighbor] : lldpNeighbor_) {
      if (neighbor.intfId != intfId) continue;
      if (identityDot1xStatus_->nbrClassificationCacheHas(ethAddr)) {
         TRACE(trace, 8, "Neighbor " << ethAddr.stringValue() << " classification is being cached");
      } else {
         unregisterNeighbor(ethAddr, intfId);
      }
   }
   updateClassificationStatus();
}

bool NbrClassificationSm::shouldNeighborBeRemoved(const Neighbor& neighbor) {
   Rex::String ethAddr = neighbor.ethAddr.stringValue();
   if (neighbor.classification.flags == 0) {
      TRACE(trace, 8, "Neighbor " << ethAddr << " is not classified");
      return true;
   }
   if (identityDot1xStatus_->nbrClassificationCacheHas(neighbor.ethAddr) ||
       keepsClassificationIntfDown()) {
      TRACE(trace, 8, "Neighbor " << ethAddr << " classification is being cached");
      return false;
   }
   TRACE(trace, 8, "Neighbor " << ethAddr << " classification is not cached");
   return !isIntfUp(neighbor.intfId) && !lldpHasNeighbor(neighbor);
}

bool NbrClassificationSm::lldpHasNeighbor(const Neighbor& neighbor) const {
   auto portStatus = status_->portStatus(neighbor.intfId);
   return portStatus && doesPortHaveRemoteSystemFrom(*portStatus, neighbor.ethAddr);
}

bool NbrClassificationSm::isIntfUp(const Wirekit::IntfId& intfId) const {
   auto intfStatus = ethPhyIntfStatusDir_->intfStatus(intfId);
   if (!intfStatus) {
      TRACE(trace, 8, "Could not find interface " << intfId);
      return false;
   }
   return intfStatus->linkStatus() == Interface::linkUp;
}

// Does not publish. An address that is still heard is taken up again after the next frame.
bool NbrClassificationSm::unregisterNeighbor(const Wirekit::EthAddr& ethAddr,
                                             const Wirekit::IntfId& intfId) {
   if (!lldpNeighbor_.find(ethAddr)) return false;
   TRACE(trace, 8, "unregisterNeighbor " << intfId << " " << ethAddr.stringValue());
   lldpNeighborDel(ethAddr);
   delNbrClassificationIntfSm(intfId);
   toClassify_.insert(ethAddr, true);
   return true;
}

void NbrClassificationSm::handleCache(const Wirekit::EthAddr& ethAddr) {
   toCheck_.insert(ethAddr, true);
}

void NbrClassificationSm::handleIntfStatus(const Wirekit::IntfId& intfId) {
   Interface::EthPhyIntfStatus::PtrConst standing = ethPhyIntfStatusDir_->intfStatus(intfId);
   if (const auto* found = links_.find(intfId)) {
      if (*found == standing) return;
      unwatch(*found);
      links_.erase(intfId);
   }
   if (standing) {
      links_.insert(intfId, standing);
      on(standing, Interface::EthPhyIntfStatus::linkStatusAttr,
         &NbrClassificationSm::handleAnyLinkStatus);
   }
   doCheckIntf(intfId);
}

void NbrClassificationSm::handleAnyLinkStatus(const Rex::Change& change) {
   doCheckIntf(static_cast<const Interface::EthPhyIntfStatus&>(change.entity).intfId());
}

void NbrClassificationSm::doCheckIntf(const Wirekit::IntfId& intfId) {
   for (auto [ethAddr, neighbor] : lldpNeighbor_) {
      if (neighbor.intfId == intfId) toCheck_.insert(ethAddr, true);
   }
}

bool doesPortHaveRemoteSystemFrom(const Lldp::PortStatus& portStatus,
                                  const Wirekit::EthAddr& ethAddr) {
   for (auto [index, remoteSystem] : portStatus.remoteSystem()) {
      if (remoteSystem->ethAddr() == ethAddr) return true;
   }
   return false;
}

}  // namespace Lldp::Agent::NbrClassification
