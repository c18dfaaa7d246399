#include "host/Watch/LinkDirSm.h"

namespace Host {

LinkDirSm::LinkDirSm(Interface::AllEthPhyIntfStatusDir::PtrConst dir, LldpEvents& events)
    : dir_(std::move(dir)), events_(events) {
   on(dir_, Interface::AllEthPhyIntfStatusDir::intfStatusAttr, &LinkDirSm::handleIntfStatus);

   handleInitialized();
}

void LinkDirSm::handleInitialized() {
   for (auto [intfId, row] : dir_->intfStatus()) handleIntfStatus(intfId);
}

void LinkDirSm::handleIntfStatus(const Wirekit::IntfId& intfId) {
   auto standing = linkSm_.get(intfId);
   auto intfStatus = dir_->intfStatus(intfId);
   if (standing && standing->intfStatus() == intfStatus) return;
   if (standing) {
      standing->handleGone();
      linkSm_.erase(intfId);
   }
   if (intfStatus) linkSm_.make(intfId, intfStatus, events_);
}

void LinkDirSm::tellStanding(const TellStanding& tell) const {
   for (auto [intfId, sm] : linkSm_.all()) sm->tellStanding(tell);
}

}  // namespace Host
