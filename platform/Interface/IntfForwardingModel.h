// What is done with the frames that an interface receives. The order counts: who wants a port that
// takes part in the network asks for at least intfForwardingBridged, who can also use one that
// 802.1X still holds back for at least intfForwardingUnauthorized.
#pragma once

#include <boost/describe/enum.hpp>
#include <cstdint>

namespace Interface {

enum IntfForwardingModel : uint8_t {
   intfForwardingUnknown = 0,
   intfForwardingDiscard = 1,
   intfForwardingUnauthorized = 2,
   intfForwardingBridged = 3,
   intfForwardingRouted = 4,
};
BOOST_DESCRIBE_ENUM(IntfForwardingModel, intfForwardingUnknown, intfForwardingDiscard,
                    intfForwardingUnauthorized, intfForwardingBridged, intfForwardingRouted)

}  // namespace Interface
