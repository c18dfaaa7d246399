// lldp trace [FACILITY [LEVELS|off]]
#pragma once

#include "cli/Session.h"

namespace CLI {
class App;
}

namespace LldpCli {

// Adds the command below `app`. The session outlives the parsing, which runs the command.
void addTrace(CLI::App& app, Session& session);

}  // namespace LldpCli
