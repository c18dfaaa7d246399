#include "Lldp/LldpInputSm/PoeSm.h"

#include "Rex/EntityType.h"
#include "RingLog/RingLog.h"

namespace Lldp::Agent::Input {
namespace {

const Rex::TraceHandle trace("LldpAgent", false);

}  // namespace

PoeSm::PoeSm(Lldp::Status::PtrConst status, Lldp::LocalSystem::Ptr localSystem,
             Rex::Dir::PtrConst poePortStatus)
    : status_(std::move(status)),
      localSystem_(std::move(localSystem)),
      poePortStatus_(std::move(poePortStatus)) {
   on(status_, StatusBase::remTablesLastChangeTimeAttr, &PoeSm::handleRemoteSystem);
   on(status_, Status::portStatusAttr, &PoeSm::handlePortStatus);
   on(localSystem_, LocalSystem::localPortAttr, &PoeSm::doNote);
   on(poePortStatus_, Rex::Dir::entityPtrAttr, &PoeSm::handlePowerAgentUpdate);

   handleInitialized();
}

PoeSm::~PoeSm() = default;

void PoeSm::handleInitialized() {
   TRACE(trace, 8, "PoeSm::handleInitialized()");
   for (auto [intfId, portStatus] : status_->portStatus()) handlePortStatus(intfId);
   if (!poePortStatus_) return;
   for (auto [name, entity] : poePortStatus_->entityPtr()) handlePowerAgentUpdate(name);
}

void PoeSm::doNote(const Wirekit::IntfId& intfId) {
   if (noted_.add(intfId)) handleRemoteSystem();
}

void PoeSm::handleRemoteSystem() {
   TRACE(trace, 8, "PoeSm::handleRemoteSystem()");
   if (!localSystem_) {
      DualLog(trace, 8, "NO localSystem");
      return;
   }
   noted_.take([this](const Wirekit::IntfId& intfId) { doAnswer(intfId); });
}

void PoeSm::doAnswer(const Wirekit::IntfId& intfId) {
   auto sm = poePortStatusSm(intfId);
   auto localPort = localSystem_->localPort(intfId);
   if (!sm || !localPort || !localPort->localPortPoeInfo()) return;
   const auto& localPortPoeInfo = localPort->localPortPoeInfo();
   auto remote = sm->remoteSystemWithPowerRequest();
   if (remote) {
      DualLog(trace, 6,
              intfId << Rex::format(": set Remote System to: %s",
                                    remote->chassisId().stringValue().charPtr())
                     << " from " << remote->ethAddr().stringValue());
   } else if (localPortPoeInfo->remoteSystem()) {
      DualLog(trace, 9, intfId << ": remove Remote System");
   }
   localPortPoeInfo->remoteSystemIs(remote);
}

void PoeSm::handlePortStatus(const Wirekit::IntfId& intfId) {
   auto portStatus = status_->portStatus(intfId);
   auto standing = poePortStatusSm(intfId);
   if (standing && standing->portStatus() == portStatus) return;
   poePortStatusSmDel(intfId);
   if (portStatus) poePortStatusSmIs(intfId, portStatus, this);
   doNote(intfId);
}

void PoeSm::handlePowerAgentUpdate(const Rex::String& name) {
   auto entity = poePortStatus_->entityPtr(name);
   auto standing = poeAgentPortSm(name);
   // A report that was made anew within one reaction is another one.
   if (!entity || (standing && standing->poePortStatus().get() != entity.get())) {
      handlePowerAgentDelete(name);
   }
   if (!entity) return;
   auto portStatus = Rex::dynamicPtr<const Environment::Power::PoePortStatus>(entity);
   if (!portStatus) {
      TRACE(trace, 8,
            "PoeSm::handlePowerAgentUpdate(" << name << ") -> " << entity->entityType().name());
      return;
   }
   TRACE(trace, 8, "PoeSm::handlePowerAgentUpdate(" << name << ") -> Created SM");
   if (!poeAgentPortSmHas(name)) poeAgentPortSmIs(name, name, portStatus, localSystem_);
}

// Without the power agent's word the port's record has its default back.
void PoeSm::handlePowerAgentDelete(const Rex::String& name) {
   TRACE(trace, 8, "PoeSm::handlePowerAgentDelete(" << name << ")");
   if (poeAgentPortSmHas(name)) {
      TRACE(trace, 8, "PoeSm::handlePowerAgentDelete reset localPort PoE info");
      updateLocalPortFromPowerAgent(localSystem_, name, {});
   }
   poeAgentPortSmDel(name);
}

void PoeSm::doClose() {
   TRACE(trace, 8, "PoeSm::doClose()");
   for (auto [intfId, sm] : poePortStatusSm()) poePortStatusSmDel(intfId);
   for (auto [name, sm] : poeAgentPortSm()) poeAgentPortSmDel(name);
}

}  // namespace Lldp::Agent::Input
