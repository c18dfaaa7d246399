// The name of a routing instance; the empty one is none, which matches only itself.
#pragma once

#include "Rex/Value.h"

namespace L3 {

struct VrfNameWords {
   static constexpr const char* text = "VrfName::value::bytes > VrfName::maxLength not allowed";
};
using VrfName = Rex::BoundedText<100, VrfNameWords>;

}  // namespace L3
