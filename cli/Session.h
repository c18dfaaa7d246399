// What the options before and around a command gave it to work with.
#pragma once

#include <optional>
#include <ostream>
#include <string>

namespace LldpCli {

inline constexpr const char* defaultSocket = "/run/lldp-agentd/api.sock";

struct Session {
   std::ostream& out;
   std::optional<size_t> width;  // columns of the terminal; none when the output goes elsewhere
   std::string socketPath = defaultSocket;
};

}  // namespace LldpCli
