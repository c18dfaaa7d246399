// Keeps each port's list of network policies in line with the operator's rows. The neighbours' side
// is NetworkPolicyPortStatusSm's.
#pragma once

#include "Lldp/LldpInputSm/NetworkPolicyPortStatusSm.h"
#include "Lldp/LldpInputSm/NotedPorts.h"
#include "Rex/Owned.h"
#include "Rex/StateMachine.h"

namespace Lldp::Agent::Input {

class NetworkPolicySm : public Rex::StateMachine {
 public:
   NetworkPolicySm(Lldp::Config::PtrConst config, Lldp::Status::PtrConst status,
                   Lldp::LocalSystem::Ptr localSystem);
   ~NetworkPolicySm() override;

   // The neighbours of the port ask for something else. Taken up when all of the frame is reported:
   // the list depends on every neighbour of the port, and one frame may name each application.
   void doNote(const Wirekit::IntfId& intfId);

 private:
   void handleInitialized();
   void handleRequests();
   void handlePortConfig(const Wirekit::IntfId& intfId);
   void handlePortConfigPolicy(const Rex::Change& change);
   void handleNetworkPolicyConfig(const Wirekit::IntfId& intfId);
   void handleNetworkPolicyPortStatus(const Wirekit::IntfId& intfId);
   void doClose() override;

   const Lldp::Config::PtrConst config_;
   const Lldp::Status::PtrConst status_;
   const Lldp::LocalSystem::Ptr localSystem_;
   Rex::HashMap<Wirekit::IntfId, Lldp::PortConfig::PtrConst> portConfig_;  // watched
   NotedPorts noted_;

   REX_MACHINES(NetworkPolicyPortStatusSm, networkPolicyPortStatusSm, Wirekit::IntfId)
};

}  // namespace Lldp::Agent::Input
