// Watches one local port and tells the port's LldpPamSm that something it advertises has changed.
// It lives as long as the local port does, whether or not the port has an LldpPamSm.
#pragma once

#include "Lldp/LldpProtocolSm/LocalPortPoeInfoSm.h"
#include "Rex/Owned.h"
#include "Rex/StateMachine.h"
#include "model/LocalSystem.h"

namespace Lldp::Agent::Protocol {

class Root;

class LocalPortSm : public Rex::StateMachine {
 public:
   LocalPortSm(Lldp::LocalPort::PtrConst localPort, Rex::Ptr<Root> root);
   ~LocalPortSm() override;

   const Lldp::LocalPort::PtrConst& localPort() const { return localPort_; }
   const Rex::Ptr<Root>& root() const { return root_; }
   const Wirekit::IntfId& intfId() const { return localPort_->intfId(); }

   REX_MACHINE(LocalPortPoeInfoSm, localPortPoeInfoSm)

 private:
   void handleInitialized();
   void handleLocalPortAttrs();
   void handleLocalPortPoE();
   void doClose() override;

   const Lldp::LocalPort::PtrConst localPort_;
   const Rex::Ptr<Root> root_;
};

// Something that the port advertises has changed. Without an LldpPamSm there is nothing to transmit
// on, and one that is made later sends what stands then.
void handleLocalPortAttrsChanged(const Rex::Ptr<Root>& root, const Wirekit::IntfId& intfId);

}  // namespace Lldp::Agent::Protocol
