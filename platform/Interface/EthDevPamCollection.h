// The packet access objects that stand now, by interface. Kept by EthDevPamManager.
#pragma once

#include "Rex/Entity.h"
#include "Wirekit/Pam.h"

namespace Interface {

class EthDevPamCollection : public Rex::Entity {
   REX_ENTITY(EthDevPamCollection, Rex::Entity)
   REX_POINTERS(Wirekit::Pam, intfPam, Wirekit::IntfId, intfId)
   REX_ENTITY_END()
};

}  // namespace Interface
