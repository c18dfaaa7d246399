#include "cli/ShowPolicy.h"

#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <algorithm>

#include "Rex/Printable.h"
#include "cli/Agent.h"
#include "cli/Neighbor.h"
#include "cli/Octets.h"
#include "cli/Table.h"

namespace LldpCli {
namespace {

struct Options {
   std::optional<std::string> port;
   bool json = false;
};

constexpr unsigned everyApplication = 0;

unsigned applicationOf(const Json& policy) {
   return policy.at("applicationNumber").get<unsigned>();
}

// In the shape that a neighbour's policies have, with the row's name.
Json configured(Json row) {
   row["unknown"] = false;
   Json view = neighborItem("networkPolicyTlv")->view(Json::array({row})).at(0);
   if (applicationOf(view) == everyApplication) view["application"] = "any";
   view["name"] = text(row.at("policyName"));
   return view;
}

Json portView(const std::string& port, const Json& portConfig, const Json& localPort) {
   Json rows = Json::array();
   for (const Json& row : portConfig.at("networkPolicyConfig")) rows.push_back(configured(row));
   std::sort(rows.begin(), rows.end(),
             [](const Json& a, const Json& b) { return applicationOf(a) < applicationOf(b); });
   return {{"port", Rex::printable(port)},
           {"configured", rows},
           {"told", neighborItem("networkPolicyTlv")->view(localPort.at("localNetworkPolicyTlv"))}};
}

Json policiesOf(Agent& agent, const std::optional<std::string>& port) {
   Json config = agent.entity("l2discovery/lldp/config", 1).at("portConfig");
   Json list = Json::array();
   for (const auto& [name, localPort] :
        Agent::portsIn(agent.entity("l2discovery/lldp/localSystem", 1).at("localPort"), port)) {
      if (!config.contains(name)) continue;
      Json view = portView(name, config.at(name), localPort);
      if (port || !view.at("configured").empty() || !view.at("told").empty()) list.push_back(view);
   }
   return list;
}

// The applications that are told the policy of a row: its own, or those that have none.
std::string toldBy(const Json& row, const Json& port) {
   std::string words;
   for (const Json& told : port.at("told")) {
      unsigned application = applicationOf(told);
      bool own = std::ranges::any_of(port.at("configured"), [&](const Json& other) {
         return applicationOf(other) == application;
      });
      if (applicationOf(row) != (own ? application : everyApplication)) continue;
      words += (words.empty() ? "" : ", ") + told.at("application").get<std::string>();
   }
   return words;
}

void printTable(std::ostream& out, const Json& ports, const Terminal& terminal) {
   Table table({{"Port", Column::Kind::name},
                {"Application"},
                {"Policy"},
                {"VLAN", Column::Kind::number},
                {"Tagged"},
                {"Priority", Column::Kind::number},
                {"DSCP", Column::Kind::number},
                {"Told for"}});
   for (const Json& port : ports) {
      for (const Json& row : port.at("configured")) {
         auto number = [&](const char* name) {
            return std::to_string(row.at(name).get<unsigned>());
         };
         table.add({port.at("port"), row.at("application"), row.at("name"), number("vlanId"),
                    row.at("tagged").get<bool>() ? "yes" : "no", number("priority"), number("dscp"),
                    toldBy(row, port)});
      }
   }
   table.print(out, terminal);
}

void run(const Options& options, Session& session) {
   Agent agent(session);
   Json ports = policiesOf(agent, options.port);
   if (options.json) {
      session.out << Json{{"policies", ports}}.dump(2) << "\n";
   } else if (std::ranges::all_of(ports,
                                  [](const Json& port) { return port.at("configured").empty(); })) {
      session.out << "no policies\n";
   } else {
      printTable(session.out, ports, session.terminal);
   }
}

}  // namespace

void addShowPolicy(CLI::App& show, Session& session) {
   auto options = std::make_shared<Options>();
   CLI::App* command =
       show.add_subcommand("policy", "network policies of the ports, and who is told of them");
   command->fallthrough();
   command->add_option("PORT", options->port, "only this port");
   command->add_flag("--json", options->json, "as JSON for scripts");
   command->callback([options, &session] { run(*options, session); });
}

}  // namespace LldpCli
