// lldp clear phones
#pragma once

#include "cli/Session.h"

namespace CLI {
class App;
}

namespace LldpCli {

// Adds the command below `clear`. The session outlives the parsing, which runs the command.
void addClearPhones(CLI::App& clear, Session& session);

}  // namespace LldpCli
