// lldp set phone, lldp unset phone
#pragma once

#include <optional>
#include <string>

#include "cli/Session.h"

namespace CLI {
class App;
}

namespace LldpCli {

// Add the commands below `set` and `unset`. The session outlives the parsing, which runs them.
void addSetPhone(CLI::App& set, Session& session);
void addUnsetPhone(CLI::App& unset, Session& session);

// An entry of the configuration as a command, or nothing when it cannot be typed.
std::optional<std::string> typedPhone(const Json& entry);

}  // namespace LldpCli
