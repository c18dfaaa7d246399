// The layer-3 side of an interface.
#pragma once

#include "Foreign/VrfName.h"
#include "Rex/Entity.h"

namespace L3::Intf {

struct Status : Rex::Entity {
   REX_ENTITY(Status, Rex::Entity)
   REX_ATTRIBUTE(VrfName, vrf)
   REX_ENTITY_END()
};

}  // namespace L3::Intf
