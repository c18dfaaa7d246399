#include "Lldp/LldpInputSm/StandbyEthIntfStatusDirSm.h"

#include "Lldp/LldpInputSm/IntfKinds.h"
#include "Lldp/LldpInputSm/Root.h"
#include "Rex/System.h"
#include "Rex/Trace.h"
#include "Statestore/Cell.h"

namespace Lldp::Agent::Input {
namespace {

const Rex::TraceHandle trace("LldpAgent", false);

}  // namespace

StandbyEthIntfStatusDirSm::StandbyEthIntfStatusDirSm(
    Interface::AllEthPhyIntfStatusDir::PtrConst ethPhyIntfStatusDir, Lldp::Config::PtrConst config,
    Lldp::LocalSystem::PtrConst localSystem, Rex::Ptr<Root> root)
    : ethPhyIntfStatusDir_(std::move(ethPhyIntfStatusDir)),
      config_(std::move(config)),
      localSystem_(std::move(localSystem)),
      root_(std::move(root)) {
   on(ethPhyIntfStatusDir_, Interface::AllEthPhyIntfStatusDir::intfStatusAttr,
      &StandbyEthIntfStatusDirSm::handlePhyIntfStatus);
   on(config_, Config::portConfigAttr, &StandbyEthIntfStatusDirSm::doMaybeCreateDesiredIntf);
   on(localSystem_, LocalSystem::localPortAttr,
      &StandbyEthIntfStatusDirSm::doMaybeCreateDesiredIntf);

   handleInitialized();
}

StandbyEthIntfStatusDirSm::~StandbyEthIntfStatusDirSm() = default;

void StandbyEthIntfStatusDirSm::handleInitialized() {
   TRACE(trace, 8, "StandbyEthIntfStatusDirSm::handleInitialized()");
   for (auto [intfId, row] : ethPhyIntfStatusDir_->intfStatus()) handlePhyIntfStatus(intfId);
}

// Front-panel ports are the active supervisor's business.
void StandbyEthIntfStatusDirSm::handlePhyIntfStatus(const Wirekit::IntfId& intfId) {
   TRACE(trace, 8, "StandbyEthIntfStatusDirSm::handlePhyIntfStatus( " << intfId << " )");
   if (!isLocalMgmtIntf(intfId, Cell::cellId())) return;
   const auto& status = root_->status();
   if (!ethPhyIntfStatusDir_->intfStatusHas(intfId)) {
      root_->desiredIntfDir()->intfDesiredDel(intfId);
      status->portStatusDel(intfId);
      return;
   }
   if (!status->portStatusHas(intfId)) {
      status->portStatusIs(intfId, Rex::System::currentTime());
   }
   doMaybeCreateDesiredIntf(intfId);
}

// Whichever of the three rows comes last brings packet access, and any that goes takes it away.
// Only this supervisor's own management ports have a PortStatus.
void StandbyEthIntfStatusDirSm::doMaybeCreateDesiredIntf(const Wirekit::IntfId& intfId) {
   if (config_->portConfigHas(intfId) && localSystem_->localPortHas(intfId) &&
       root_->status()->portStatusHas(intfId)) {
      TRACE(trace, 8, "StandbyEthIntfStatusDirSm:: Creating desiredIntf");
      root_->desiredIntfDir()->intfDesiredIs(intfId, true);
   } else {
      root_->desiredIntfDir()->intfDesiredDel(intfId);
   }
}

}  // namespace Lldp::Agent::Input
