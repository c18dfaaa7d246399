// The words of the command line, and what they do.
#pragma once

#include <optional>
#include <ostream>
#include <string>
#include <vector>

namespace LldpCli {

// Runs the command that `words` (without the program's name) ask for. `width` is that of the
// terminal behind `out`, if it is one. Returns the exit status: 0, 1 for a failure and 2 for a
// command line that is not understood, either with one line on `err`.
int runCommandLine(const std::vector<std::string>& words, std::optional<size_t> width,
                   std::ostream& out, std::ostream& err);

}  // namespace LldpCli
