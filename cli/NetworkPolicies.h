// The network policies of LLDP-MED as an operator types them, one for each application:
// voice:tagged:100:5:46,any:untagged:0:0:0, or none. A name of the policy may stand behind.
#pragma once

#include <optional>
#include <string>

#include "cli/Client.h"

namespace LldpCli {

inline constexpr const char* policiesForm =
    "none, or APPLICATION:tagged|untagged:VLAN:PRIORITY:DSCP with commas between";

// The rows that a word stands for, or nothing when it stands for none.
std::optional<Json> readPolicies(const std::string& word);
// The word that stands for rows, or nothing when there is no such word.
std::optional<std::string> typedPolicies(const Json& rows);
// The applications' names.
std::string applicationList();

}  // namespace LldpCli
