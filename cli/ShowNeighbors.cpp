#include "cli/ShowNeighbors.h"

#include <fmt/format.h>

#include <CLI/CLI.hpp>

#include "Rex/Printable.h"
#include "cli/Agent.h"
#include "cli/Neighbor.h"

namespace LldpCli {
namespace {

struct Options {
   std::optional<std::string> port;
   bool detail = false;
   bool json = false;
};

// By port, those of a port in the order in which they came.
Json neighborsOf(const Ports& ports, double now) {
   Json list = Json::array();
   for (const auto& [port, status] : ports) {
      std::map<int, Json> byIndex;
      for (const Json& remoteSystem : status.at("remoteSystem")) {
         byIndex.emplace(remoteSystem.at("index").get<int>(), neighbor(port, remoteSystem, now));
      }
      for (auto& [index, view] : byIndex) list.push_back(std::move(view));
   }
   return list;
}

void printTable(std::ostream& out, const Json& neighbors, const Terminal& terminal) {
   Table table(neighborColumns());
   for (const Json& neighbor : neighbors) {
      table.add(neighborRow(neighbor), isOver(neighbor) ? Style::faint : Style::plain);
   }
   table.print(out, terminal);
}

void printDetail(std::ostream& out, const Json& neighbors, const Terminal& terminal) {
   const char* between = "";
   for (const Json& neighbor : neighbors) {
      std::string title = fmt::format("{}, neighbor {}", neighbor.at("port").get<std::string>(),
                                      neighbor.at("index").get<int>());
      out << between << styled(title, Style::heading, terminal) << "\n";
      printFields(out, neighborFields(neighbor), "  ");
      between = "\n";
   }
}

void run(const Options& options, Session& session) {
   Agent agent(session);
   Json neighbors = neighborsOf(agent.portStatuses(options.port), agent.now());
   if (options.json) {
      session.out << Json{{"neighbors", neighbors}}.dump(2) << "\n";
   } else if (neighbors.empty()) {
      session.out << (options.port ? "no neighbors on " + Rex::printable(*options.port)
                                   : "no neighbors")
                  << "\n";
   } else if (options.detail) {
      printDetail(session.out, neighbors, session.terminal);
   } else {
      printTable(session.out, neighbors, session.terminal);
   }
}

}  // namespace

void addShowNeighbors(CLI::App& show, Session& session) {
   auto options = std::make_shared<Options>();
   CLI::App* command = show.add_subcommand("neighbors", "the neighbors and what they say");
   command->fallthrough();
   command->add_option("PORT", options->port, "only this port, such as Ethernet1");
   command->add_flag("--json", options->json, "everything, as JSON for scripts");
   CLI::App* detail = command->add_subcommand("detail", "everything each neighbor says, and when");
   detail->fallthrough();
   detail->callback([options] { options->detail = true; });
   command->callback([options, &session] { run(*options, session); });
}

}  // namespace LldpCli
