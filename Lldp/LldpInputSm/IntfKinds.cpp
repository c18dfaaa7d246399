#include "Lldp/LldpInputSm/IntfKinds.h"

#include "Wirekit/EthIntfId.h"
#include "Wirekit/MgmtIntfId.h"

namespace Lldp::Agent::Input {

bool lldpCapable(const Wirekit::IntfId& intfId) {
   if (Wirekit::EthIntfId::isUnconnected(intfId)) return false;
   return Wirekit::EthIntfId::isEthIntfId(intfId) || Wirekit::MgmtIntfId::isMgmtIntfId(intfId);
}

bool isLocalMgmtIntf(const Wirekit::IntfId& intfId, int slot) {
   return intfId.stringValue().startsWith(Rex::format("Management%d/", slot).view());
}

}  // namespace Lldp::Agent::Input
