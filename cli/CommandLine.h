// The words of the command line, and what they do.
#pragma once

#include <ostream>
#include <string>
#include <vector>

#include "cli/Session.h"

namespace LldpCli {

// Runs the command that `words` (without the program's name) ask for. Returns the exit status: 0,
// 1 for a failure and 2 for a command line that is not understood, either with one line on `err`.
int runCommandLine(const std::vector<std::string>& words, Session session, std::ostream& err);

// The help of the command and of all below it, each as it is shown.
std::vector<std::string> allHelp();

}  // namespace LldpCli
