// lldp-agentd. What it does stands in its --help.
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <exception>
#include <iostream>
#include <memory>
#include <string>

#include "host/Daemon.h"
#include "host/Gateway.h"
#include "host/Options.h"

namespace {

// Whatever the words are, they come out as one line.
int refuse(std::string words) {
   for (char& c : words) {
      if (c == '\n') c = ' ';
   }
   std::cerr << "lldp-agentd: " + words + "\n";
   return 1;
}

}  // namespace

int main(int argc, char** argv) {
   std::unique_ptr<Host::Daemon> daemon;
   try {
      auto options = Host::Options::parse(argc, argv);
      if (!options) return 0;
      if (options->gateway) {
         Host::Gateway(*options).run();
         return 0;
      }
      daemon = std::make_unique<Host::Daemon>(*options);
      if (!daemon->start()) return 0;
   } catch (const std::exception& error) {
      daemon.reset();
      return refuse(error.what());
   }
   // From here on an exception is a broken invariant of the agent, which ends the process.
   auto role = daemon->run();
   if (!role) return 0;
   // Without the agent's end, which would take away what is the other supervisor's now. What the
   // process holds open is closed on the way.
   Host::restart({argv, argv + argc}, *role);
   int status = refuse(std::string("cannot begin anew: ") + std::strerror(errno));
   std::_Exit(status);
}
