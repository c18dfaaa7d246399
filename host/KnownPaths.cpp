#include "host/KnownPaths.h"

#include "Statestore/Cell.h"

namespace Host {
namespace {

struct Path {
   std::string_view path;
   std::string_view type;
   bool agents = false;
};
constexpr Path shared[] = {
    {"l2discovery/lldp/cliConfig", "Lldp::CliConfig"},
    {"l2discovery/lldp/remTablesCliConfig", "Lldp::RemTablesCliConfig"},
    {"l2discovery/lldp/externalTlvs", "Rex::Dir"},
    {"l2discovery/lldp/config", "Lldp::Config", true},
    {"l2discovery/lldp/status/local", "Rex::Dir", true},
    {"l2discovery/lldp/status/all", "Lldp::AllStatus", true},
    {"l2discovery/lldp/localSystem", "Lldp::LocalSystem", true},
    {"hardware/cellInfo", "Rex::Dir"},
    {"hardware/entmib", "EntityMib::Status"},
    {"bridging/config", "Bridging::Config"},
    {"bridging/hwcapabilities", "Bridging::HwCapabilities"},
    {"routing/config", "Routing::Config"},
    {"ip/status", "Ip::Status"},
    {"ip6/status", "Ip6::Status"},
    {"environment/power/status/poePort", "Rex::Dir"},
    {"identity/nbrClassification/cliConfig", "Identity::NbrClassification::CliConfig"},
    {"identity/nbrClassification/status", "Identity::NbrClassification::Status", true},
    {"identity/dot1x/status", "Identity::Dot1x::Status"},
};
constexpr Path ofEach[] = {
    {"l2discovery/lldp/remTablesStatus", "Lldp::RemTablesStatus", true},
    {"sys/net/status", "System::NetStatus"},
    {"redundancy/status", "Redundancy::RedundancyStatus"},
    {"host/intfStatus", "Rex::Dir"},
    {"host/ethPhyIntfConfig", "Rex::Dir"},
    {"host/ethPhyIntfStatus", "Rex::Dir"},
    {"host/ethLagIntfStatus", "Rex::Dir"},
};

}  // namespace

std::vector<KnownPath> knownPaths() {
   std::vector<KnownPath> all;
   for (const Path& path : shared) all.push_back({std::string(path.path), path.type, path.agents});
   for (int cell : {1, 2}) {
      for (const Path& path : ofEach) {
         all.push_back({Cell::path(path.path, cell).stdString(), path.type, path.agents});
      }
   }
   return all;
}

}  // namespace Host
