// The agent's events in the JSON that scripts read, and as lines.
#pragma once

#include <string>

#include "cli/Client.h"

namespace LldpCli {

// From the event of that name and its data; docs/cli.md has the shape. `behind` is what the time of
// day was when the agent's clock stood at 0.
Json eventView(const std::string& name, const Json& data, double behind);

// 2026-11-21 14:03:22  Ethernet1  neighbor added: spine-1, ...
std::string eventLine(const Json& view);

}  // namespace LldpCli
