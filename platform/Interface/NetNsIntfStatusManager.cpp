#include "Interface/NetNsIntfStatusManager.h"

namespace Interface {

NetNsIntfStatusSm::NetNsIntfStatusSm(Rex::Ptr<IntfStatus const> intfStatus,
                                     NetNsIntfStatusManagerSm* parent)
    : intfStatus_(std::move(intfStatus)), parent_(parent) {
   on(intfStatus_, IntfStatus::deviceNameAttr, &NetNsIntfStatusSm::handleDevice);
   on(intfStatus_, IntfStatus::ifIndexAttr, &NetNsIntfStatusSm::handleDevice);
   on(intfStatus_, IntfStatus::netNsAttr, &NetNsIntfStatusSm::handleDevice);
   handleDevice();
}

void NetNsIntfStatusSm::handleDevice() {
   const IntfStatus& status = *intfStatus_;
   bool isDevice =
       !status.deviceName().empty() && status.ifIndex() > 0 && parent_->inNamespace(status);
   if (isDevice) {
      parent_->deviceIntfStatusDir()->intfStatusIs(
          {status.intfId(), status.deviceName(), status.ifIndex()});
   } else {
      parent_->deviceIntfStatusDir()->intfStatusDel(status.intfId());
   }
}

void NetNsIntfStatusSm::doClose() {
   parent_->deviceIntfStatusDir()->intfStatusDel(intfStatus_->intfId());
}

NetNsIntfStatusManagerSm::NetNsIntfStatusManagerSm(
    Rex::Ptr<AllIntfStatusLocalDir const> allIntfStatusLocalDir,
    Rex::Ptr<DeviceIntfStatusDir> deviceIntfStatusDir, Rex::Ptr<Rex::Entity const> kniStatus,
    const Wirekit::NamespaceName& netNs, bool filterByNetNs)
    : allIntfStatusLocalDir_(std::move(allIntfStatusLocalDir)),
      deviceIntfStatusDir_(std::move(deviceIntfStatusDir)),
      kniStatus_(std::move(kniStatus)),
      netNs_(netNs),
      filterByNetNs_(filterByNetNs) {
   on(allIntfStatusLocalDir_, AllIntfStatusLocalDir::intfStatusAttr,
      &NetNsIntfStatusManagerSm::handleIntfStatus);
   handleInitialized();
}

void NetNsIntfStatusManagerSm::handleInitialized() {
   if (!allIntfStatusLocalDir_) return;
   for (auto [intfId, intfStatus] : allIntfStatusLocalDir_->intfStatus()) handleIntfStatus(intfId);
}

void NetNsIntfStatusManagerSm::handleIntfStatus(Wirekit::IntfId intfId) {
   // The row may be another entity than before.
   netNsIntfStatusSmDel(intfId);
   if (auto intfStatus = allIntfStatusLocalDir_->intfStatus(intfId)) {
      netNsIntfStatusSmIs(intfId, intfStatus, this);
   }
}

NetNsIntfStatusManagerRoot::NetNsIntfStatusManagerRoot(
    Rex::Ptr<AllIntfStatusDir const> allIntfStatusDir,
    Rex::Ptr<AllIntfStatusLocalDir const> allIntfStatusLocalDir, const Rex::String& name,
    bool filterByNetNs)
    : allIntfStatusDir_(std::move(allIntfStatusDir)),
      allIntfStatusLocalDir_(std::move(allIntfStatusLocalDir)),
      name_(name),
      filterByNetNs_(filterByNetNs) {}

Rex::Ptr<NetNsIntfStatusManagerSm> NetNsIntfStatusManagerRoot::intfStatusManagerIs(
    Rex::Ptr<DeviceIntfStatusDir> deviceIntfStatusDir, Rex::Ptr<Rex::Entity const> kniStatus,
    const Wirekit::NamespaceName& netNs) {
   return intfStatusManager_.make(netNs, allIntfStatusLocalDir_, std::move(deviceIntfStatusDir),
                                  std::move(kniStatus), netNs, filterByNetNs_);
}

NetNsIntfStatusManagerRoot::Ptr NetNsIntfStatusManagerRootIs(
    Rex::Ptr<AllIntfStatusDir const> allIntfStatusDir,
    Rex::Ptr<AllIntfStatusLocalDir const> allIntfStatusLocalDir, const Rex::String& name,
    bool filterByNetNs) {
   return Rex::make<NetNsIntfStatusManagerRoot>(
       std::move(allIntfStatusDir), std::move(allIntfStatusLocalDir), name, filterByNetNs);
}

}  // namespace Interface
