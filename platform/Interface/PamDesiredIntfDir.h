// Which interfaces packet access is wanted of.
#pragma once

#include "Rex/Entity.h"
#include "Wirekit/IntfId.h"

namespace Interface {

class PamDesiredIntfDir : public Rex::Entity {
   REX_ENTITY(PamDesiredIntfDir, Rex::Entity)
   REX_MAPPING(Wirekit::IntfId, bool, intfDesired)
   REX_ENTITY_END()
};

}  // namespace Interface
