// What the neighbours of one port ask of network policies. When a neighbour goes the port's list
// stays until the next event: with the last LLDP-MED neighbour gone nothing of it is sent anyway.
#pragma once

#include "Lldp/LldpInputSm/RemoteSystemsSm.h"
#include "model/Config.h"
#include "model/LocalSystem.h"

namespace Lldp::Agent::Input {

class NetworkPolicyPortStatusSm : public RemoteSystemsSm {
 public:
   NetworkPolicyPortStatusSm(const Wirekit::IntfId& intfId, Lldp::PortStatus::PtrConst portStatus,
                             Lldp::LocalSystem::Ptr localSystem, Lldp::Config::PtrConst config);
   ~NetworkPolicyPortStatusSm() override;

 private:
   void doAdd(const RemoteSystem::PtrConst& remoteSystem) override;
   void doRemove(const RemoteSystem::PtrConst& remoteSystem) override;
   void handleNetworkPolicyTlv();
   void handleNetworkPolicyRequest(const Wirekit::IntfId& intfId);

   const Wirekit::IntfId intfId_;
   const Lldp::LocalSystem::Ptr localSystem_;
   const Lldp::Config::PtrConst config_;
};

}  // namespace Lldp::Agent::Input
