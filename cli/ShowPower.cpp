#include "cli/ShowPower.h"

#include <fmt/format.h>

#include <CLI/CLI.hpp>

#include "Rex/Printable.h"
#include "cli/Agent.h"
#include "cli/Dot3Tlvs.h"
#include "cli/Octets.h"
#include "cli/Table.h"

namespace LldpCli {
namespace {

struct Options {
   std::optional<std::string> port;
   bool json = false;
};

// delivering, for poePortDelivering.
std::string stateName(const Json& state) {
   constexpr std::string_view prefix = "poePort";
   std::string name = text(state);
   if (name.starts_with(prefix)) name.erase(0, prefix.size());
   if (!name.empty())
      name[0] = static_cast<char>(std::tolower(static_cast<unsigned char>(name[0])));
   return name;
}

// What powered devices among the neighbours ask for: the long form of the TLV holds it.
Json requestsOf(const Json& portStatus) {
   Json requests = Json::array();
   for (const auto& [index, neighbor] : portStatus.at("remoteSystem").items()) {
      const Json& info = neighbor.at("powerViaMdiInfo");
      bool isPse = info.at("powerType").get<unsigned>() % 2 == 0;
      if (!neighbor.at("powerViaMdiTlvReceived").get<bool>() || info.at("tlvFormat") == 0u ||
          isPse) {
         continue;
      }
      requests.push_back({{"sourceMac", text(neighbor.at("ethAddr"))},
                          {"requestedWatts", watts(info.at("pdRequestedPower"))}});
   }
   return requests;
}

Json powerOf(Agent& agent, const std::optional<std::string>& port) {
   Json config = agent.entity("l2discovery/lldp/config", 1).at("portConfig");
   Json reports = agent.entity("environment/power/status/poePort", 1).at("entityPtr");
   Json list = Json::array();
   for (const auto& [name, portStatus] : agent.portStatuses(port)) {
      Json view{{"port", Rex::printable(name)}};
      if (reports.contains(name) && reports.at(name).contains("portStatus")) {
         const Json& report = reports.at(name).at("portStatus");
         view["state"] = stateName(report.at("state"));
         view["allowedWatts"] = watts(report.at("allowedPower"));
      }
      if (config.contains(name) && config.at(name).at("poeAllocatedPowerFallback") != 0u) {
         view["fallbackWatts"] = watts(config.at(name).at("poeAllocatedPowerFallback"));
      }
      view["requests"] = requestsOf(portStatus);
      if (port || view.size() > 2 || !view.at("requests").empty()) list.push_back(std::move(view));
   }
   return list;
}

std::string wattsIn(const Json& view, const char* name) {
   return view.contains(name) ? wattsWords(view.at(name)) : "";
}

void printTable(std::ostream& out, const Json& ports, const Terminal& terminal) {
   Table table({{"Port", Column::Kind::name},
                {"State"},
                {"Allowed", Column::Kind::number},
                {"Fallback", Column::Kind::number},
                {"Requested"}});
   for (const Json& port : ports) {
      std::string requests;
      for (const Json& request : port.at("requests")) {
         requests += fmt::format("{}{} by {}", requests.empty() ? "" : ", ",
                                 wattsIn(request, "requestedWatts"),
                                 request.at("sourceMac").get<std::string>());
      }
      table.add({port.at("port"), port.value("state", ""), wattsIn(port, "allowedWatts"),
                 wattsIn(port, "fallbackWatts"), requests});
   }
   table.print(out, terminal);
}

void run(const Options& options, Session& session) {
   Agent agent(session);
   Json ports = powerOf(agent, options.port);
   if (options.json) {
      session.out << Json{{"power", ports}}.dump(2) << "\n";
   } else if (ports.empty()) {
      session.out << "no port feeds a device or is asked to\n";
   } else {
      printTable(session.out, ports, session.terminal);
   }
}

}  // namespace

void addShowPower(CLI::App& show, Session& session) {
   auto options = std::make_shared<Options>();
   CLI::App* command =
       show.add_subcommand("power", "what devices ask for, and what the power agent allows");
   command->fallthrough();
   command->add_option("PORT", options->port, "only this port");
   command->add_flag("--json", options->json, "as JSON for scripts");
   command->callback([options, &session] { run(*options, session); });
}

}  // namespace LldpCli
