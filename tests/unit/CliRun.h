// One call of the operator's command.
#pragma once

#include <sstream>
#include <string>
#include <vector>

#include "cli/CommandLine.h"

struct CliDone {
   int status;
   std::string out;
   std::string err;
};

inline CliDone cliRun(const std::vector<std::string>& words, LldpCli::Terminal terminal = {}) {
   std::ostringstream out;
   std::ostringstream err;
   LldpCli::Session session{out, terminal};
   session.wallTime = [] { return 1e9; };
   session.user = "admin";
   session.line = "pts/3";
   int status = LldpCli::runCommandLine(words, session, err);
   return {status, out.str(), err.str()};
}
