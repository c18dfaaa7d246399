#include "Lldp/LldpInputSm/Lag.h"

#include "Lldp/LldpInputSm/PortConfigSync.h"
#include "Lldp/LldpInputSm/Root.h"
#include "Rex/Assert.h"

namespace Lldp::Agent::Input {
namespace {

// The administrative status depends on the governing interface. It is derived anew after every
// change of a membership, whether or not the port's group changed by it.
void finishMembershipChange(const Wirekit::IntfId& portId, const Wirekit::IntfId& oldLag,
                            const Rex::Ptr<Root>& root) {
   Wirekit::IntfId newLag = portToLag(portId, root);
   if (newLag != oldLag) notifyPortLagChange(portId, oldLag, newLag, root);
   if (auto portConfig = root->config()->portConfig(portId)) syncPortConfig(portConfig, root);
}

}  // namespace

Wirekit::IntfId portToLag(const Wirekit::IntfId& portId, const Rex::Ptr<Root>& root) {
   auto lags = root->portToLagsMap(portId);
   return lags ? (*lags->lagId().begin()).key : Wirekit::IntfId();
}

Wirekit::IntfId governingIntf(const Wirekit::IntfId& portId, const Rex::Ptr<Root>& root) {
   return governingIntf(portId, portToLag(portId, root));
}

void addLagMember(const Wirekit::IntfId& portId, const Wirekit::IntfId& lagId,
                  const Rex::Ptr<Root>& root) {
   Wirekit::IntfId oldLag = portToLag(portId, root);
   root->portToLagsMapIs(portId)->lagIdIs(lagId, true);
   finishMembershipChange(portId, oldLag, root);
}

void removeLagMember(const Wirekit::IntfId& portId, const Wirekit::IntfId& lagId,
                     const Rex::Ptr<Root>& root) {
   Wirekit::IntfId oldLag = portToLag(portId, root);
   auto lags = root->portToLagsMap(portId);
   REX_ASSERT(lags);
   lags->lagIdDel(lagId);
   if (lags->lagId().empty()) root->portToLagsMapDel(portId);
   finishMembershipChange(portId, oldLag, root);
}

void notifyPortLagChange(const Wirekit::IntfId& portId, const Wirekit::IntfId& oldLag,
                         const Wirekit::IntfId& newLag, const Rex::Ptr<Root>& root) {
   if (const auto& inputSm = root->inputSm()) {
      inputSm->doNotifyPortLagChange(portId, oldLag, newLag);
   }
   if (auto localPort = root->localSystem()->localPort(portId)) {
      syncLinkAggregationInfo(localPort, root);
   }
}

void syncLinkAggregationInfo(const LocalPort::Ptr& localPort, const Rex::Ptr<Root>& root) {
   Wirekit::IntfId lag = portToLag(localPort->intfId(), root);
   LinkAggStatusMap status = localPort->linkAggregationInfo().status;
   uint32_t portId = 0;
   if (lag.empty()) {
      status.aggEnabledIs(false);
   } else {
      // Every port that can be a member was made capable.
      REX_ASSERT(status.aggCapable());
      status.aggEnabledIs(true);
      // A group without a number is told with all 32 bits set.
      portId = static_cast<uint32_t>(ifIndexVal(lag, root));
   }
   localPort->linkAggregationInfoIs({status, portId});
}

}  // namespace Lldp::Agent::Input
