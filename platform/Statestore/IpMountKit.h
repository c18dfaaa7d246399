// The mounts of IPv4 and IPv6 status, which always go together.
#pragma once

#include "Rex/Ptr.h"

namespace Statestore {
class MountGroup;
}

namespace IpMountKit {

class IpMountKitIpStatusMounter {
 public:
   // Adds "ip/status" and "ip6/status", as asked for, to a group.
   void doMountEntities(const Rex::Ptr<Statestore::MountGroup>& group, bool ip, bool ip6);
};

}  // namespace IpMountKit
