// How a watching machine tells what stands when a listener comes.
#pragma once

#include <functional>

#include "Rex/Json.h"

namespace Host {

using TellStanding = std::function<void(const char* event, const Rex::Json& data)>;

}  // namespace Host
