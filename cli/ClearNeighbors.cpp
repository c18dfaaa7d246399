#include "cli/ClearNeighbors.h"

#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <algorithm>

#include "cli/Agent.h"

namespace LldpCli {
namespace {

size_t countNeighbors(Agent& agent) {
   size_t count = 0;
   for (const auto& [name, port] : agent.portStatuses(std::nullopt, false)) {
      count += port.at("remoteSystem").size();
   }
   return count;
}

// An agent remembers the time of the last request that it carried out.
void awaitCleared(Agent& agent) {
   const std::string path = "/v1/entity/l2discovery/lldp/remTablesCliConfig/remTablesClearRequest";
   const std::string status =
       fmt::format("/v1/entity/cell/{}/l2discovery/lldp/remTablesStatus", agent.cell());
   agent.await([&, asked = std::optional<double>()]() mutable {
      if (!asked) asked = agent.client().get(path).at("requestTime").get<double>();
      return agent.client().get(status).at("remTablesLastClearTime").get<double>() >= *asked;
   });
}

// A request clears what stands when it comes. What stands after it was not cleared, or is back
// already.
void run(bool json, Session& session) {
   Agent agent(session);
   size_t count = countNeighbors(agent);
   agent.client().change("PATCH", "/v1/entity/l2discovery/lldp/remTablesCliConfig",
                         {{"remTablesClearRequest",
                           {{"requesterName", session.user}, {"requesterLine", session.line}}}});
   awaitCleared(agent);
   count -= std::min(count, countNeighbors(agent));
   if (json) {
      session.out << Json{{"cleared", count}}.dump() << "\n";
   } else {
      session.out << fmt::format("{} neighbor{} cleared\n", count, count == 1 ? "" : "s");
   }
}

}  // namespace

void addClearNeighbors(CLI::App& clear, Session& session) {
   CLI::App* command = clear.add_subcommand("neighbors", "forgets all neighbors until they speak");
   auto json = std::make_shared<bool>(false);
   command->fallthrough();
   command->add_flag("--json", *json, "as JSON for scripts");
   command->callback([json, &session] { run(*json, session); });
}

}  // namespace LldpCli
