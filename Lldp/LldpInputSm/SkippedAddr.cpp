#include "Lldp/LldpInputSm/SkippedAddr.h"

#include "Lldp/LldpInputSm/Root.h"
#include "Rex/Register.h"

REX_REGISTER(Lldp::Agent::Input::SkippedAddr)

namespace Lldp::Agent::Input {

void addSkippedAddr(const ManagementAddress::Key& key, const Wirekit::IntfId& intfId,
                    const Rex::Ptr<Root>& root) {
   root->skippedAddrIs(key)->intfIs(intfId, true);
}

void removeSkippedAddr(const ManagementAddress::Key& key, const Wirekit::IntfId& intfId,
                       const Rex::Ptr<Root>& root) {
   auto skipped = root->skippedAddr(key);
   if (!skipped) return;
   skipped->intfDel(intfId);
   if (skipped->intf().empty()) root->skippedAddrDel(key);
}

// The first one to be served removes itself; the others find the address taken again and stay. An
// entry whose interfaces have all gone stays too, empty.
void handleSkippedManAddrs(const ManagementAddress::Key& key, const Rex::Ptr<Root>& root) {
   auto skipped = root->skippedAddr(key);
   if (!skipped) return;
   for (auto [intfId, value] : skipped->intf()) {
      const auto& inputSm = root->inputSm();
      auto sm = inputSm ? inputSm->ipIntfStatusSm(intfId) : nullptr;
      if (sm && !sm->closed()) {
         sm->handleActiveAddrWithMask();
      } else {
         skipped->intfDel(intfId);
      }
   }
}

}  // namespace Lldp::Agent::Input
