#include "host/Watch/LinkSm.h"

#include "host/Watch/LldpEvents.h"

namespace Host {
namespace {

const char* eventOf(bool up) {
   return up ? "port-up" : "port-down";
}

Rex::Json dataOf(const Interface::EthPhyIntfStatus& intfStatus) {
   return {{"port", Rex::toJson(intfStatus.intfId())}};
}

}  // namespace

LinkSm::LinkSm(Interface::EthPhyIntfStatus::PtrConst intfStatus, LldpEvents& events)
    : intfStatus_(std::move(intfStatus)), events_(events) {
   on(intfStatus_, Interface::EthPhyIntfStatus::linkStatusAttr, &LinkSm::handleLinkStatus);

   handleLinkStatus();
}

// A status that says nothing is no link.
void LinkSm::handleLinkStatus() {
   upIs(intfStatus_->linkStatus() == Interface::linkUp);
}

void LinkSm::upIs(bool up) {
   if (up_ == up) return;
   up_ = up;
   events_.tell(eventOf(up), dataOf(*intfStatus_));
}

void LinkSm::tellStanding(const TellStanding& tell) const {
   tell(eventOf(up_), dataOf(*intfStatus_));
}

}  // namespace Host
