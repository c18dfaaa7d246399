// Keeps a DeviceIntfStatusDir up to date: an interface exists as a device while this cell's own
// directory has its row, the row names a device, and the device is in the wanted network namespace.
#pragma once

#include "Interface/DeviceIntfStatusDir.h"
#include "Interface/IntfStatus.h"
#include "Rex/Owned.h"
#include "Rex/StateMachine.h"
#include "Wirekit/NamespaceName.h"

namespace Interface {

class NetNsIntfStatusManagerSm;

// One interface's row: follows its device's name, index and namespace.
class NetNsIntfStatusSm : public Rex::StateMachine {
 public:
   NetNsIntfStatusSm(Rex::Ptr<IntfStatus const> intfStatus, NetNsIntfStatusManagerSm* parent);

 private:
   void handleDevice();
   void doClose() override;

   const Rex::Ptr<IntfStatus const> intfStatus_;
   NetNsIntfStatusManagerSm* const parent_;
};

// One namespace.
class NetNsIntfStatusManagerSm : public Rex::StateMachine {
 public:
   NetNsIntfStatusManagerSm(Rex::Ptr<AllIntfStatusLocalDir const> allIntfStatusLocalDir,
                            Rex::Ptr<DeviceIntfStatusDir> deviceIntfStatusDir,
                            Rex::Ptr<Rex::Entity const> kniStatus,
                            const Wirekit::NamespaceName& netNs, bool filterByNetNs);

   const Rex::Ptr<DeviceIntfStatusDir>& deviceIntfStatusDir() const { return deviceIntfStatusDir_; }
   // The kernel's own view of the namespace. The rows carry what is needed of it.
   const Rex::Ptr<Rex::Entity const>& kniStatus() const { return kniStatus_; }
   bool inNamespace(const IntfStatus& intfStatus) const {
      return !filterByNetNs_ || intfStatus.netNs() == netNs_;
   }

 private:
   void handleInitialized();
   void handleIntfStatus(Wirekit::IntfId intfId);
   void doClose() override { netNsIntfStatusSm_.clear(); }

   const Rex::Ptr<AllIntfStatusLocalDir const> allIntfStatusLocalDir_;
   const Rex::Ptr<DeviceIntfStatusDir> deviceIntfStatusDir_;
   const Rex::Ptr<Rex::Entity const> kniStatus_;
   const Wirekit::NamespaceName netNs_;
   const bool filterByNetNs_;
   REX_MACHINES(NetNsIntfStatusSm, netNsIntfStatusSm, Wirekit::IntfId)
};

// The namespaces' managers of one user.
class NetNsIntfStatusManagerRoot : public Rex::PtrInterface {
 public:
   using Ptr = Rex::Ptr<NetNsIntfStatusManagerRoot>;
   NetNsIntfStatusManagerRoot(Rex::Ptr<AllIntfStatusDir const> allIntfStatusDir,
                              Rex::Ptr<AllIntfStatusLocalDir const> allIntfStatusLocalDir,
                              const Rex::String& name, bool filterByNetNs);

   const Rex::String& name() const { return name_; }
   const Rex::Ptr<AllIntfStatusDir const>& allIntfStatusDir() const { return allIntfStatusDir_; }

   // Makes a namespace's manager, which starts with the rows that stand.
   Rex::Ptr<NetNsIntfStatusManagerSm> intfStatusManagerIs(
       Rex::Ptr<DeviceIntfStatusDir> deviceIntfStatusDir, Rex::Ptr<Rex::Entity const> kniStatus,
       const Wirekit::NamespaceName& netNs = Wirekit::NamespaceName::defaultNamespace());
   void intfStatusManagerDel(const Wirekit::NamespaceName& netNs) {
      intfStatusManager_.erase(netNs);
   }

 private:
   const Rex::Ptr<AllIntfStatusDir const> allIntfStatusDir_;
   const Rex::Ptr<AllIntfStatusLocalDir const> allIntfStatusLocalDir_;
   const Rex::String name_;
   const bool filterByNetNs_;
   Rex::OwnedMachines<NetNsIntfStatusManagerSm, Wirekit::NamespaceName> intfStatusManager_;
};

NetNsIntfStatusManagerRoot::Ptr NetNsIntfStatusManagerRootIs(
    Rex::Ptr<AllIntfStatusDir const> allIntfStatusDir,
    Rex::Ptr<AllIntfStatusLocalDir const> allIntfStatusLocalDir, const Rex::String& name,
    bool filterByNetNs);

}  // namespace Interface
