// lldp config save
#pragma once

#include "cli/Session.h"

namespace CLI {
class App;
}

namespace LldpCli {

// Adds the command below `config`. The session outlives the parsing, which runs the command.
void addConfigSave(CLI::App& config, Session& session);

}  // namespace LldpCli
