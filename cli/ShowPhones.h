// lldp show phones
#pragma once

#include "cli/Session.h"

namespace CLI {
class App;
}

namespace LldpCli {

// Adds the command below `show`. The session outlives the parsing, which runs the command.
void addShowPhones(CLI::App& show, Session& session);

}  // namespace LldpCli
