#include "Statestore/IpMountKit.h"

#include "Statestore/Mount.h"

namespace IpMountKit {

void IpMountKitIpStatusMounter::doMountEntities(const Rex::Ptr<Statestore::MountGroup>& group,
                                                bool ip, bool ip6) {
   if (ip) group->doMount(Statestore::Mount("ip/status", "Ip::Status", "r"));
   if (ip6) group->doMount(Statestore::Mount("ip6/status", "Ip6::Status", "r"));
}

}  // namespace IpMountKit
