#include "Lldp/LldpInputSm/Lag.h"

#include "Lldp/LldpInputSm/Root.h"
#include "Rex/Assert.h"

namespace Lldp::Agent::Input {

Wirekit::IntfId portToLag(const Wirekit::IntfId& portId, const Rex::Ptr<Root>& root) {
   auto lags = root->portToLagsMap(portId);
   return lags ? (*lags->lagId().begin()).key : Wirekit::IntfId();
}

Wirekit::IntfId governingIntf(const Wirekit::IntfId& portId, const Rex::Ptr<Root>& root) {
   Wirekit::IntfId lag = portToLag(portId, root);
   return lag.empty() ? portId : lag;
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

int32_t ifIndexVal(const Wirekit::IntfId& intfId, const Rex::Ptr<Root>& root) {
   auto intfStatus = root->allIntfStatusDir()->intfStatus(intfId);
   return intfStatus ? root->ifIndex(intfStatus) : -1;
}

}  // namespace Lldp::Agent::Input
