#include <sys/ioctl.h>
#include <unistd.h>

#include <iostream>
#include <optional>

#include "cli/CommandLine.h"

namespace {

std::optional<size_t> terminalWidth() {
   winsize size{};
   bool known = ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 0;
   return known ? std::optional<size_t>(size.ws_col) : std::nullopt;
}

}  // namespace

int main(int count, char** words) {
   return LldpCli::runCommandLine({words + 1, words + count}, terminalWidth(), std::cout,
                                  std::cerr);
}
