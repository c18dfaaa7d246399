// What stands around the command: the terminal, the user, the clock.
#include <pwd.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <chrono>
#include <cstdlib>
#include <iostream>
#include <string_view>
#include <thread>

#include "cli/CommandLine.h"

namespace {

LldpCli::Terminal terminal() {
   winsize size{};
   bool known = ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 0;
   bool colours =
       isatty(STDOUT_FILENO) && LldpCli::wantsColours(getenv("NO_COLOR"), getenv("TERM"));
   return {known ? std::optional<size_t>(size.ws_col) : std::nullopt, colours};
}

std::string user() {
   const passwd* entry = getpwuid(getuid());
   return entry ? entry->pw_name : std::to_string(getuid());
}

std::string line() {
   const char* name = ttyname(STDIN_FILENO);
   if (!name) return "lldp";
   std::string_view path(name);
   return std::string(path.starts_with("/dev/") ? path.substr(5) : path);
}

double wallTime() {
   return std::chrono::duration<double>(std::chrono::system_clock::now().time_since_epoch())
       .count();
}

}  // namespace

int main(int count, char** words) {
   LldpCli::Session session{std::cout, terminal()};
   session.patience.pause = [](std::chrono::milliseconds time) {
      std::this_thread::sleep_for(time);
   };
   session.wallTime = wallTime;
   session.user = user();
   session.line = line();
   if (const char* path = getenv("LLDP_SOCKET"); path && *path) session.socketPath = path;
   if (const char* url = getenv("LLDP_STORE")) session.store.url = url;
   return LldpCli::runCommandLine({words + 1, words + count}, session, std::cerr);
}
