// lldp man: the manual page, from the descriptions that --help shows.
#pragma once

#include <string>

#include "cli/Session.h"

namespace CLI {
class App;
}

namespace LldpCli {

// Adds the command below `app`. The session outlives the parsing, which runs the command.
void addMan(CLI::App& app, Session& session);

// The page in roff with the man macros, man(7), of the command and all below it.
std::string manPage(const CLI::App& app);

}  // namespace LldpCli
