// The switchport configuration of one interface, a port or a group, and the ports that it governs:
// it gives each its VLAN. A port stands here exactly while this is its governing interface.
#pragma once

#include "Foreign/Bridging.h"
#include "Rex/OrderedMap.h"
#include "Rex/StateMachine.h"
#include "model/LocalSystem.h"

namespace Lldp::Agent::Input {

class Root;

class SwitchIntfConfigSm : public Rex::StateMachine {
 public:
   SwitchIntfConfigSm(Bridging::SwitchIntfConfig::PtrConst switchIntfConfig, Rex::Ptr<Root> root);
   ~SwitchIntfConfigSm() override;

   const Bridging::SwitchIntfConfig::PtrConst& switchIntfConfig() const {
      return switchIntfConfig_;
   }
   const Wirekit::IntfId& intfId() const { return switchIntfConfig_->intfId(); }

   // The governed ports, whether or not they exist yet.
   bool associatedIntfIdHas(const Wirekit::IntfId& portId) const {
      return associatedIntfId_.find(portId);
   }

   // The port comes to be governed from here, or is no longer.
   void doAddPort(const Wirekit::IntfId& portId);
   void doRemovePort(const Wirekit::IntfId& portId);
   // Fills in what the governed port takes from here.
   void doSyncLocalPort(const LocalPort::Ptr& localPort);

 private:
   void handleInitialized();
   void handleSwitchportModeAndNativeVlan();
   void associatedIntfIdIs(const Wirekit::IntfId& portId, bool value) {
      associatedIntfId_.insert(portId, value);
   }
   void associatedIntfIdDel(const Wirekit::IntfId& portId) { associatedIntfId_.erase(portId); }

   const Bridging::SwitchIntfConfig::PtrConst switchIntfConfig_;
   const Rex::Ptr<Root> root_;
   Rex::OrderedMap<Wirekit::IntfId, bool> associatedIntfId_;
};

}  // namespace Lldp::Agent::Input
