// The name of the machine, one entity for each supervisor.
#pragma once

#include "Rex/Entity.h"
#include "Rex/String.h"

namespace System {

struct NetStatus : Rex::Entity {
   REX_ENTITY(NetStatus, Rex::Entity)
   REX_ATTRIBUTE(Rex::String, hostname)
   REX_ATTRIBUTE(Rex::String, domainName)
   REX_ENTITY_END()
};

}  // namespace System
