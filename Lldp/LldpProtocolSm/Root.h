// What the protocol engine shares: the configuration, this cell's status, the local system, and
// the packet access of all ports. The agent makes it and fills it in a fixed order.
#pragma once

#include "Interface/DeviceIntfStatusDir.h"
#include "Interface/EthDevPamCollection.h"
#include "Interface/EthDevPamManager.h"
#include "Interface/EthPhyIntfStatus.h"
#include "Interface/NetNsIntfStatusManager.h"
#include "Interface/PamDesiredIntfDir.h"
#include "Lldp/LldpProtocolSm/OnOffSwitchSm.h"
#include "Lldp/LldpProtocolSm/ProtocolSm.h"
#include "Rex/Entity.h"
#include "Rex/Owned.h"
#include "model/Config.h"
#include "model/LocalSystem.h"
#include "model/Status.h"

namespace Lldp::Agent::Protocol {

// An entity that is made under a name and belongs to its parent. A second call with the name that
// stands returns what is there.
template <class T>
class NamedChild {
 public:
   const Rex::Ptr<T>& get() const { return child_; }
   const Rex::Ptr<T>& make(const Rex::String& name) {
      if (!child_ || name_ != name) {
         name_ = name;
         child_ = Rex::make<T>();
      }
      return child_;
   }

 private:
   Rex::String name_;
   Rex::Ptr<T> child_;
};

class Root : public Rex::Entity {
   REX_ENTITY(Root, Rex::Entity)
   REX_ATTRIBUTE(Interface::AllEthPhyIntfStatusDir::PtrConst, ethPhyIntfStatusDir)
   REX_ATTRIBUTE(Lldp::Config::PtrConst, config)
   REX_ATTRIBUTE(Lldp::Status::Ptr, status)
   REX_ATTRIBUTE(Lldp::LocalSystem::PtrConst, localSystem)
   REX_ENTITY_END()

   explicit Root(const Rex::String& name) : name_(name) {}
   const Rex::String& name() const { return name_; }

   const Interface::DeviceIntfStatusDir::Ptr& deviceIntfStatusDir() const {
      return deviceIntfStatusDir_.get();
   }
   const Interface::DeviceIntfStatusDir::Ptr& deviceIntfStatusDirIs(const Rex::String& name) {
      return deviceIntfStatusDir_.make(name);
   }
   const Interface::NetNsIntfStatusManagerRoot::Ptr& intfStatusManagerRoot() const {
      return intfStatusManagerRoot_;
   }
   const Interface::NetNsIntfStatusManagerRoot::Ptr& intfStatusManagerRootIs(
       Interface::AllIntfStatusDir::PtrConst allIntfStatusDir,
       Interface::AllIntfStatusLocalDir::PtrConst allIntfStatusLocalDir, bool filterByNetNs);
   const Interface::PamDesiredIntfDir::Ptr& desiredIntfDir() const { return desiredIntfDir_.get(); }
   const Interface::PamDesiredIntfDir::Ptr& desiredIntfDirIs(const Rex::String& name) {
      return desiredIntfDir_.make(name);
   }
   const Interface::EthDevPamCollection::Ptr& pamCollection() const { return pamCollection_.get(); }
   const Interface::EthDevPamCollection::Ptr& pamCollectionIs(const Rex::String& name) {
      return pamCollection_.make(name);
   }

   // Makes the packet manager, once the three children stand. It stays disabled.
   void doInitializePamMan();

 private:
   const Rex::String name_;
   NamedChild<Interface::DeviceIntfStatusDir> deviceIntfStatusDir_;
   Interface::NetNsIntfStatusManagerRoot::Ptr intfStatusManagerRoot_;
   NamedChild<Interface::PamDesiredIntfDir> desiredIntfDir_;
   NamedChild<Interface::EthDevPamCollection> pamCollection_;

   REX_MACHINE(Interface::EthDevPamManager, pamMan)
   REX_MACHINE(ProtocolSm, protocolSm)
   REX_MACHINE(OnOffSwitchSm, onOffSwitchSm)
};

Root::Ptr rootFactory(const Rex::String& name);

}  // namespace Lldp::Agent::Protocol
