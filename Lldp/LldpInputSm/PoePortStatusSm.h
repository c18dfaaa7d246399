// The neighbours of one port that ask for power. Tells PoeSm when the port's choice among them may
// have become another one.
#pragma once

#include "Lldp/LldpInputSm/RemoteSystemsSm.h"
#include "Wirekit/EthAddr.h"

namespace Lldp::Agent::Input {

class PoeSm;

class PoePortStatusSm : public RemoteSystemsSm {
 public:
   PoePortStatusSm(Lldp::PortStatus::PtrConst portStatus, PoeSm* parent);
   ~PoePortStatusSm() override;

   // What findRemoteSystemWithPowerRequest() finds, without a walk over those that do not ask.
   Lldp::RemoteSystem::PtrConst remoteSystemWithPowerRequest() const;

 private:
   struct Asking {
      RemoteSystem::PtrConst remoteSystem;
      Wirekit::EthAddr ethAddr;  // that it is counted by
   };

   void doAdd(const RemoteSystem::PtrConst& remoteSystem) override;
   void doRemove(const RemoteSystem::PtrConst& remoteSystem) override;
   void handlePowerViaMdi(const Rex::Change& change);
   void handleEthAddr(const Rex::Change& change);
   void handleRefresh();
   void doAsk(const RemoteSystem::PtrConst& remoteSystem);
   void doAskNoMore(int index);
   void doFollowRefresh();
   void doWatch(const RemoteSystem::PtrConst& remoteSystem);

   PoeSm* const parent_;
   Rex::HashMap<int, Asking> asking_;  // by index
   Rex::HashMap<Wirekit::EthAddr, int> askingFrom_;
   bool followsRefresh_ = false;
};

}  // namespace Lldp::Agent::Input
