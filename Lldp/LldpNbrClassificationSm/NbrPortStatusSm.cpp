#include "Lldp/LldpNbrClassificationSm/NbrPortStatusSm.h"

#include "Lldp/LldpNbrClassificationSm/NbrClassificationSm.h"

namespace Lldp::Agent::NbrClassification {

NbrPortStatusSm::NbrPortStatusSm(Lldp::PortStatus::PtrConst portStatus, uint64_t place,
                                 NbrClassificationSm* parent)
    : RemoteSystemsSm(std::move(portStatus)), place_(place), parent_(parent) {
   doFollow();
}

NbrPortStatusSm::~NbrPortStatusSm() = default;

void NbrPortStatusSm::doAdd(const RemoteSystem::PtrConst& remoteSystem) {
   on(remoteSystem, RemoteSystem::ethAddrAttr, &NbrPortStatusSm::handleEthAddr);
   on(remoteSystem, RemoteSystem::systemCapabilitiesAttr,
      &NbrPortStatusSm::handleSystemCapabilities);
   Known known{remoteSystem->ethAddr(), nextPlace_++};
   known_.insert(remoteSystem->index(), known);
   parent_->doHear(known.ethAddr, {remoteSystem, intfId(), {place_, known.place}});
}

void NbrPortStatusSm::doRemove(const RemoteSystem::PtrConst& remoteSystem) {
   if (const Known* found = known_.find(remoteSystem->index())) {
      Known known = *found;
      known_.erase(remoteSystem->index());
      parent_->doHearNoMore(known.ethAddr, {place_, known.place});
   }
}

void NbrPortStatusSm::handleEthAddr(const Rex::Change& change) {
   RemoteSystem::PtrConst remoteSystem(static_cast<const RemoteSystem*>(&change.entity));
   const Known* found = known_.find(remoteSystem->index());
   if (!found || found->ethAddr == remoteSystem->ethAddr()) return;
   Known known = *found;
   parent_->doHearNoMore(known.ethAddr, {place_, known.place});
   known.ethAddr = remoteSystem->ethAddr();
   known_.insert(remoteSystem->index(), known);
   parent_->doHear(known.ethAddr, {remoteSystem, intfId(), {place_, known.place}});
}

void NbrPortStatusSm::handleSystemCapabilities(const Rex::Change& change) {
   const auto& remoteSystem = static_cast<const RemoteSystem&>(change.entity);
   if (const Known* found = known_.find(remoteSystem.index())) parent_->doNote(found->ethAddr);
}

// The neighbours of a port that has gone are heard no more.
void NbrPortStatusSm::doClose() {
   for (auto [index, known] : known_) parent_->doHearNoMore(known.ethAddr, {place_, known.place});
}

}  // namespace Lldp::Agent::NbrClassification
