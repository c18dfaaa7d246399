// Decides by an interface's forwarding model whether the port exists for LLDP, and alone makes and
// deletes its rows. Stands as long as the interface is in the directory.
//
//   absent   no row
//   present  PortConfig, LocalPort, and, unless the port is the other supervisor's management port,
//            PortStatus and the wish for packet access
#pragma once

#include "Interface/EthPhyIntfStatus.h"
#include "Rex/StateMachine.h"
#include "model/LocalSystem.h"

namespace Lldp::Agent::Input {

class ActiveEthIntfStatusDirSm;

class EthPhyIntfStatusSm : public Rex::StateMachine {
 public:
   EthPhyIntfStatusSm(Interface::EthPhyIntfStatus::PtrConst intfStatus,
                      ActiveEthIntfStatusDirSm* parent);
   ~EthPhyIntfStatusSm() override;

   const Interface::EthPhyIntfStatus::PtrConst& intfStatus() const { return intfStatus_; }
   const Wirekit::IntfId& intfId() const { return intfStatus_->intfId(); }

   // Makes or deletes the rows as the present values ask for. It can be repeated at any time.
   void handleForwardingModel();

 private:
   bool passes() const;
   void doPresent();
   void doFillLocalPort(const LocalPort::Ptr& localPort);
   void doClose() override;

   const Interface::EthPhyIntfStatus::PtrConst intfStatus_;
   ActiveEthIntfStatusDirSm* const parent_;
};

}  // namespace Lldp::Agent::Input
