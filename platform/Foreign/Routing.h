// The routing agent's configuration, as far as it is read here.
#pragma once

#include "Rex/Entity.h"

namespace Routing {

struct Config : Rex::Entity {
   REX_ENTITY(Config, Rex::Entity)
   // Whether the switch routes.
   REX_ATTRIBUTE(bool, routing)
   REX_ENTITY_END()
};

}  // namespace Routing
