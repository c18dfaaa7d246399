// lldp completion bash|zsh|fish, and the words that these scripts ask for.
#pragma once

#include <string>
#include <vector>

#include "cli/Session.h"

namespace CLI {
class App;
}

namespace LldpCli {

// Adds the command below `app`. The session outlives the parsing, which runs the command.
void addCompletion(CLI::App& app, Session& session);

// What can stand in the place of the last of `words`, which may be empty or begun. Ports and the
// like come from the agent, if it answers.
std::vector<std::string> completions(const CLI::App& app, const std::vector<std::string>& words,
                                     Session& session);
// The command that the scripts call for that, which no help shows.
inline constexpr const char* completeCommand = "__complete";

}  // namespace LldpCli
