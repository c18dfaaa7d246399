// Watches the power status of one port, which the port advertises.
#pragma once

#include "Rex/StateMachine.h"
#include "model/LocalSystem.h"

namespace Lldp::Agent::Protocol {

class Root;

class LocalPortPoeInfoSm : public Rex::StateMachine {
 public:
   LocalPortPoeInfoSm(Lldp::LocalPortPoeInfo::PtrConst localPortPoeInfo,
                      const Wirekit::IntfId& intfId, Rex::Ptr<Root> root);
   ~LocalPortPoeInfoSm() override;

   const Lldp::LocalPortPoeInfo::PtrConst& localPortPoeInfo() const { return localPortPoeInfo_; }
   const Wirekit::IntfId& intfId() const { return intfId_; }
   const Rex::Ptr<Root>& root() const { return root_; }

 private:
   void handleAttrsChanged();

   const Lldp::LocalPortPoeInfo::PtrConst localPortPoeInfo_;
   const Wirekit::IntfId intfId_;
   const Rex::Ptr<Root> root_;
};

}  // namespace Lldp::Agent::Protocol
