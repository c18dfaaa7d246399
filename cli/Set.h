// lldp set SETTING VALUE ..., lldp unset SETTING ...
#pragma once

#include "cli/Session.h"

namespace CLI {
class App;
}

namespace LldpCli {

// Adds the commands below `app`. The session outlives the parsing, which runs the command.
void addSet(CLI::App& app, Session& session);
void addUnset(CLI::App& app, Session& session);

}  // namespace LldpCli
