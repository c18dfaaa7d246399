// Base of a machine that watches each neighbour of one port.
#pragma once

#include "Rex/HashMap.h"
#include "Rex/StateMachine.h"
#include "model/Status.h"

namespace Lldp::Agent::Input {

class RemoteSystemsSm : public Rex::StateMachine {
 public:
   const Lldp::PortStatus::PtrConst& portStatus() const { return portStatus_; }
   const Wirekit::IntfId& intfId() const { return portStatus_->intfId(); }

 protected:
   explicit RemoteSystemsSm(Lldp::PortStatus::PtrConst portStatus);
   ~RemoteSystemsSm() override;

   // Takes up the neighbours that stand already; the last step of the machine's construction.
   void doFollow();

   // A neighbour has come, and its attributes are to be watched; or it has gone, and is watched no
   // longer.
   virtual void doAdd(const RemoteSystem::PtrConst& remoteSystem) = 0;
   virtual void doRemove(const RemoteSystem::PtrConst& remoteSystem) = 0;

 private:
   void handleRemoteSystem(int index);

   const Lldp::PortStatus::PtrConst portStatus_;
   Rex::HashMap<int, RemoteSystem::PtrConst> followed_;
};

}  // namespace Lldp::Agent::Input
