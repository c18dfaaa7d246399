// lldp debug redundancy [[CELL] ROLE]
#pragma once

#include <string>
#include <vector>

#include "cli/Session.h"

namespace CLI {
class App;
}

namespace LldpCli {

// Adds the command below `debug`. The session outlives the parsing, which runs the command.
void addDebugRedundancy(CLI::App& debug, Session& session);

// What may follow these words of it.
std::vector<std::string> nextRoleWords(const std::vector<std::string>& words);

}  // namespace LldpCli
