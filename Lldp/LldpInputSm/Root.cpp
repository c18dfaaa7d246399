#include "Lldp/LldpInputSm/Root.h"

#include "Interface/IntfDetailsProvider.h"
#include "Rex/Register.h"
#include "Rex/Trace.h"

REX_REGISTER(Lldp::Agent::Input::Root::Lags)
REX_REGISTER(Lldp::Agent::Input::Root)

namespace Lldp::Agent::Input {
namespace {

const Rex::TraceHandle trace("LldpAgent", false);

}  // namespace

Root::~Root() = default;

int32_t Root::ifIndex(const Interface::IntfStatus::PtrConst& intfStatus) const {
   if (const auto* provider = Intf::intfDetailsProvider(intfStatus)) {
      return provider->ifIndex(intfStatus);
   }
   TRACE(trace, 8, "Failed to create IntfDetailsProvider for interface " << intfStatus->intfId());
   return -1;
}

int32_t ifIndexVal(const Wirekit::IntfId& intfId, const Rex::Ptr<Root>& root) {
   auto intfStatus = root->allIntfStatusDir()->intfStatus(intfId);
   return intfStatus ? root->ifIndex(intfStatus) : -1;
}

Root::Ptr rootFactory(const Rex::String& name) {
   return Rex::make<Root>(name);
}

}  // namespace Lldp::Agent::Input
