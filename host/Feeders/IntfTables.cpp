#include "host/Feeders/IntfTables.h"

namespace Host {
namespace {

// The agent's directory, and the one of each supervisor for both to read.
struct Path {
   const char* agents;
   const char* shared;
};
constexpr Path statusPath{"interface/status/all", "host/intfStatus"};
constexpr Path configPath{"interface/config/eth/phy/all", "host/ethPhyIntfConfig"};
constexpr Path phyPath{"interface/status/eth/phy/all", "host/ethPhyIntfStatus"};
constexpr Path groupsPath{"interface/status/eth/lag", "host/ethLagIntfStatus"};

Rex::String localPath() {
   return Cell::path("interface/status/local", 0);
}

}  // namespace

IntfTables::IntfTables(Statestore::EntityManager& manager, Of whose)
    : local_(localFedEntity<Interface::AllIntfStatusLocalDir>(manager, localPath().view())) {
   auto make = [&](auto& table, const Path& path) {
      table.make(manager, path.agents, path.shared, whose);
   };
   make(status_, statusPath);
   make(config_, configPath);
   make(phy_, phyPath);
   make(groups_, groupsPath);
}

std::set<std::string> IntfTables::fedPaths(bool chassis) {
   std::set<std::string> paths{statusPath.agents, phyPath.agents, groupsPath.agents,
                               localPath().stdString()};
   if (!chassis) return paths;
   for (const Path& path : {statusPath, configPath, phyPath, groupsPath}) {
      for (int cell : {1, 2}) paths.insert(Cell::path(path.shared, cell).stdString());
   }
   return paths;
}

// Rows of an interface itself go last.
void IntfTables::sweep() {
   groups_.get()->sweep();
   phy_.get()->sweep();
   config_.get()->sweep();
   status_.get()->sweep();
}

}  // namespace Host
