#include "Lldp/LldpInputSm/IdentityDot1xStatusSm.h"

#include "Lldp/LldpInputSm/Root.h"
#include "Rex/Assert.h"
#include "Rex/Trace.h"

namespace Lldp::Agent::Input {
namespace {

const Rex::TraceHandle trace("LldpAgent", false);

}  // namespace

// Nothing to repeat at the start: each port machine reads the bypass itself.
IdentityDot1xStatusSm::IdentityDot1xStatusSm(Identity::Dot1x::Status::PtrConst identityDot1xStatus,
                                             Rex::Ptr<Root> root)
    : identityDot1xStatus_(std::move(identityDot1xStatus)), root_(std::move(root)) {
   on(identityDot1xStatus_, Identity::Dot1x::Status::lldpBypassAttr,
      &IdentityDot1xStatusSm::handleLldpBypass);
}

IdentityDot1xStatusSm::~IdentityDot1xStatusSm() = default;

void IdentityDot1xStatusSm::handleLldpBypass() {
   TRACE(trace, 8, "IdentityDot1xStatusSm::handleLldpBypass()");
   // The bypass is a matter of the active supervisor; nobody changes it on a standby.
   REX_ASSERT(root_->activeEthIntfStatusDirSm());
   for (auto [intfId, sm] : root_->activeEthIntfStatusDirSm()->ethPhyIntfStatusSm()) {
      sm->handleForwardingModel();
   }
}

}  // namespace Lldp::Agent::Input
