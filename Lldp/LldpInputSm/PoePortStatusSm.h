// The neighbours of one port that ask for power. Tells PoeSm when the port's choice among them may
// have become another one.
#pragma once

#include "Lldp/LldpInputSm/RemoteSystemsSm.h"

namespace Lldp::Agent::Input {

class PoeSm;

class PoePortStatusSm : public RemoteSystemsSm {
 public:
   PoePortStatusSm(Lldp::PortStatus::PtrConst portStatus, PoeSm* parent);
   ~PoePortStatusSm() override;

   // What findRemoteSystemWithPowerRequest() finds, without a walk over those that do not ask.
   Lldp::RemoteSystem::PtrConst remoteSystemWithPowerRequest() const;

 private:
   void doAdd(const RemoteSystem::PtrConst& remoteSystem) override;
   void doRemove(const RemoteSystem::PtrConst& remoteSystem) override;
   void handlePowerViaMdi(const Rex::Change& change);
   void handleAsking(const Rex::Change& change);
   void doWatch(const RemoteSystem::PtrConst& remoteSystem, bool asks);

   PoeSm* const parent_;
   Rex::HashMap<int, RemoteSystem::PtrConst> asking_;  // by index
};

}  // namespace Lldp::Agent::Input
