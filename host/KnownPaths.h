// Every path of the state store that the agent and its host read or write. docs/state-store.md
// tells who fills what.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace Host {

struct KnownPath {
   std::string path;
   std::string_view type;
   bool agents;  // an agent writes it
};

// Those of both supervisors.
std::vector<KnownPath> knownPaths();

}  // namespace Host
