// What the feeders know of the kernel's network: one reader fills it (LinuxNetwork), tests do it by
// hand.
#pragma once

#include "host/Feeders/Addresses.h"
#include "host/Feeders/Links.h"
#include "host/Feeders/PortVlans.h"

namespace Host {

struct Network {
   Links links;
   PortVlans vlans;
   Addresses addresses;
};

}  // namespace Host
