// What the neighbours of one port ask of network policies. Each report is noted with
// NetworkPolicySm, which has the list made once for all that one frame changes. When a neighbour
// goes the port's list stays until the next event: with the last LLDP-MED neighbour gone nothing of
// it is sent anyway.
#pragma once

#include "Lldp/LldpInputSm/RemoteSystemsSm.h"
#include "model/Config.h"
#include "model/LocalSystem.h"

namespace Lldp::Agent::Input {

class NetworkPolicySm;

class NetworkPolicyPortStatusSm : public RemoteSystemsSm {
 public:
   NetworkPolicyPortStatusSm(const Wirekit::IntfId& intfId, Lldp::PortStatus::PtrConst portStatus,
                             Lldp::LocalSystem::Ptr localSystem, Lldp::Config::PtrConst config,
                             NetworkPolicySm* parent);
   ~NetworkPolicyPortStatusSm() override;

   // Makes the port's list anew.
   void doSync();

 private:
   void doAdd(const RemoteSystem::PtrConst& remoteSystem) override;
   void doRemove(const RemoteSystem::PtrConst& remoteSystem) override;
   void handleNetworkPolicyTlv();
   void handleNetworkPolicyRequest(const Wirekit::IntfId& intfId);

   const Wirekit::IntfId intfId_;
   const Lldp::LocalSystem::Ptr localSystem_;
   const Lldp::Config::PtrConst config_;
   NetworkPolicySm* const parent_;
};

}  // namespace Lldp::Agent::Input
