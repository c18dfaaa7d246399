// What a port does with LLDP.
#pragma once

#include <string>

#include "cli/Client.h"

namespace LldpCli {

// The status of the agent's entity of a port's configuration: "txOnly", "rxOnly", "txAndRx",
// "disabled".
inline std::string adminStatus(const Json& portConfig) {
   const Json& status = portConfig.at("adminStatus");
   return status.is_string() ? status.get<std::string>() : "disabled";
}

inline std::string adminStatusWords(const std::string& status) {
   return status == "txAndRx"  ? "transmit and receive"
          : status == "txOnly" ? "transmit only"
          : status == "rxOnly" ? "receive only"
                               : status;
}

}  // namespace LldpCli
