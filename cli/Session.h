// What a command has to work with: what stands around the program, and the options before it.
#pragma once

#include <functional>
#include <memory>
#include <ostream>
#include <string>

#include "cli/Client.h"
#include "cli/Gateway.h"
#include "cli/Terminal.h"

namespace LldpCli {

inline constexpr const char* defaultSocket = "/run/lldp-agentd/api.sock";

struct Session {
   std::ostream& out;
   Terminal terminal{};
   Patience patience{};
   std::function<double()> wallTime = [] { return 0.0; };  // seconds since 1970
   // Who asks, and from where, for the agent's log.
   std::string user = "unknown";
   std::string line = "lldp";
   std::string socketPath = defaultSocket;
   StoreAddress store{};
   std::shared_ptr<Gateway> gateway{};  // to that store, once a command has wanted it
};

}  // namespace LldpCli
