#include "Lldp/LldpInputSm/PoeAgentPortSm.h"

#include "Rex/Trace.h"

namespace Lldp::Agent::Input {
namespace {

const Rex::TraceHandle trace("LldpAgent", false);

using Environment::Power::PoePortStatus;

}  // namespace

PoeAgentPortSm::PoeAgentPortSm(const Rex::String& name, PoePortStatus::PtrConst poePortStatus,
                               Lldp::LocalSystem::Ptr localSystem)
    : name_(name), poePortStatus_(std::move(poePortStatus)), localSystem_(std::move(localSystem)) {
   on(poePortStatus_, PoePortStatus::portStatusAttr, &PoeAgentPortSm::handlePoePortStatus);

   handlePoePortStatus();
}

PoeAgentPortSm::~PoeAgentPortSm() = default;

void PoeAgentPortSm::handlePoePortStatus() {
   PoePortStatus::PortStatus portStatus =
       poePortStatus_ ? poePortStatus_->portStatus() : PoePortStatus::PortStatus();
   TRACE(trace, 8,
         "PoeAgentPortSm::handlePoePortStatus(" << name_ << ") -> " << portStatus.allowedPower
                                                << " " << portStatus.state);
   updateLocalPortFromPowerAgent(localSystem_, name_, portStatus);
}

void updateLocalPortFromPowerAgent(Rex::Ptr<Lldp::LocalSystem> localSystem, const Rex::String& name,
                                   const PoePortStatus::PortStatus& portStatus) {
   auto localPort = localSystem->localPort(Wirekit::IntfId(name));
   if (!localPort) return;
   TRACE(trace, 8, "Interface " << name << " is allowed to use " << portStatus.allowedPower);
   if (const auto& localPortPoeInfo = localPort->localPortPoeInfo()) {
      localPortPoeInfo->poePortStatusIs(portStatus);
   }
}

}  // namespace Lldp::Agent::Input
