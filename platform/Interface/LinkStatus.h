// Whether a port has a link.
#pragma once

#include <boost/describe/enum.hpp>
#include <cstdint>

namespace Interface {

enum LinkStatus : uint8_t { linkUnknown = 0, linkDown = 1, linkUp = 2 };
BOOST_DESCRIBE_ENUM(LinkStatus, linkUnknown, linkDown, linkUp)

}  // namespace Interface
