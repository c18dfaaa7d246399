// Tells the neighbours that come to a port and leave it.
#pragma once

#include "Rex/Owned.h"
#include "Rex/StateMachine.h"
#include "host/Watch/NeighborSm.h"
#include "model/Status.h"

namespace Host {

class LldpPortStatusSm : public Rex::StateMachine {
 public:
   // `own`: this supervisor's agent serves the port, and not the other's.
   LldpPortStatusSm(Lldp::PortStatus::PtrConst portStatus, bool own, LldpStatusSm& parent);

   const Lldp::PortStatus::PtrConst& portStatus() const { return portStatus_; }
   void tellStanding(const TellStanding& tell) const;
   // The port has left, and all its neighbours with it.
   void handleGone();

 private:
   void handleInitialized();
   void handleRemoteSystem(int index);
   void doClose() override { neighborSm_.clear(); }

   const Lldp::PortStatus::PtrConst portStatus_;
   const bool own_;
   LldpStatusSm& parent_;
   Rex::OwnedMachines<NeighborSm, int> neighborSm_;
};

}  // namespace Host
