// lldp watch [PORT] [--standing] [--json]
#pragma once

#include "cli/Session.h"

namespace CLI {
class App;
}

namespace LldpCli {

// Adds the command below `app`. The session outlives the parsing, which runs the command.
void addWatch(CLI::App& app, Session& session);

}  // namespace LldpCli
