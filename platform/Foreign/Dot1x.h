// IEEE Std 802.1X, as far as it is read here.
#pragma once

#include "Rex/Entity.h"
#include "Wirekit/EthAddr.h"

namespace Identity::Dot1x {

struct Status : Rex::Entity {
   REX_ENTITY(Status, Rex::Entity)
   // Whether LLDP frames pass on ports that are not authorised.
   REX_ATTRIBUTE(bool, lldpBypass)
   // The neighbours whose classification is kept here too. The key alone counts.
   REX_MAPPING(Wirekit::EthAddr, bool, nbrClassificationCache)
   REX_ENTITY_END()
};

}  // namespace Identity::Dot1x
