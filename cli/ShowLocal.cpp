#include "cli/ShowLocal.h"

#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <algorithm>

#include "Rex/Printable.h"
#include "cli/AdminStatus.h"
#include "cli/Agent.h"
#include "cli/BasicTlvs.h"
#include "cli/LocalTlvs.h"
#include "cli/Names.h"
#include "cli/Octets.h"
#include "cli/Table.h"

namespace LldpCli {
namespace {

struct Options {
   std::optional<std::string> port;
   bool json = false;
};

// An identifier or text that is not set yet is not sent, and not shown.
void putIdentifier(Json& view, const char* name, const Json& from) {
   if (!octets(from.at("value")).empty()) view[name] = identifier(from);
}
void putText(Json& view, const char* name, const Json& from) {
   if (std::string words = text(from); !words.empty()) view[name] = words;
}

// Those that go out, in the order in which they do.
Json managementAddresses(const Json& system, const Json& config) {
   Json list = Json::array();
   bool sent = std::ranges::any_of(config.at("portConfig"), [](const Json& port) {
      return port.at("mgmtAddrTxEnable") == true;
   });
   if (!sent) return list;
   uint32_t most = config.at("maxTxMgmtAddrs").get<uint32_t>();
   const Json& ip6 = system.at("ip6ManagementAddress");
   if (!octets(ip6.at("key").at("manAddr")).empty()) list.push_back(managementAddress(ip6));
   const Json& rows = system.at("managementAddress");
   for (const Json& rank : system.at("managementAddressPrio")) {
      if (most-- == 0) break;
      auto row = std::ranges::find_if(
          rows, [&](const Json& address) { return address.at("key") == rank.at("value"); });
      if (row != rows.end()) list.push_back(managementAddress(*row));
   }
   return list;
}

Json portView(const std::string& port, const Json& localPort, const Json& portConfigs,
              const Json& providers) {
   Json view{{"port", Rex::printable(port)}};
   putIdentifier(view, "portId", localPort.at("portIdentifier"));
   putText(view, "portDescription", localPort.at("portDesc"));
   if (portConfigs.contains(port)) {
      view["adminStatus"] = adminStatus(portConfigs.at(port));
      putLocalTlvs(view, localPort, portConfigs.at(port));
   }
   putExternalTlvs(view, port, localPort, providers);
   return view;
}

Json localView(const Json& system, const Json& config, const Json& providers, const Ports& ports) {
   Json view = Json::object();
   putIdentifier(view, "chassis", system.at("chassisIdentifier"));
   putText(view, "systemName", system.at("sysName"));
   putText(view, "systemDescription", system.at("sysDesc"));
   view["capabilities"] = capabilities(system.at("sysCapSupported"), system.at("sysCapEnabled"));
   view["managementAddresses"] = managementAddresses(system, config);
   view["timers"] = {{"transmitInterval", config.at("messageTxInterval")},
                     {"holdTime", config.at("messageTxHoldTime")},
                     {"reinitDelay", config.at("reinitDelay")},
                     {"transmitDelay", config.at("txDelay")}};
   view["ports"] = Json::array();
   for (const auto& [port, localPort] : ports) {
      view["ports"].push_back(portView(port, localPort, config.at("portConfig"), providers));
   }
   return view;
}

std::string seconds(const Json& timers, const char* name) {
   return fmt::format("{} s", timers.at(name).get<unsigned>());
}

void printSystem(std::ostream& out, const Json& view) {
   const Json& timers = view.at("timers");
   bool named = view.contains("chassis");
   Fields fields{{"Chassis ID", named ? identifierWords(view.at("chassis")) : ""},
                 {"System name", view.value("systemName", "")},
                 {"System description", view.value("systemDescription", "")},
                 {"Capabilities supported", listWords(view.at("capabilities").at("supported"))},
                 {"Capabilities enabled", listWords(view.at("capabilities").at("enabled"))}};
   for (const Json& address : view.at("managementAddresses")) {
      fields.emplace_back("Management address", managementAddressWords(address));
   }
   fields.emplace_back("Transmit interval", seconds(timers, "transmitInterval"));
   fields.emplace_back("Hold time (TTL)", seconds(timers, "holdTime"));
   fields.emplace_back("Transmit delay", seconds(timers, "transmitDelay"));
   fields.emplace_back("Reinit delay", seconds(timers, "reinitDelay"));
   printFields(out, fields);
}

std::vector<std::string> portRow(const Json& port) {
   return {port.at("port"), port.contains("portId") ? identifierWords(port.at("portId")) : "",
           port.value("portDescription", ""), adminStatusWords(port.value("adminStatus", ""))};
}

void printPorts(std::ostream& out, const Json& ports, const Terminal& terminal) {
   Table table({{"Port", Column::Kind::name}, {"Port ID"}, {"Description"}, {"LLDP"}});
   for (const Json& port : ports) table.add(portRow(port));
   table.print(out, terminal);
}

void printPort(std::ostream& out, const Json& port) {
   std::vector<std::string> row = portRow(port);
   Fields fields{
       {"Port", row[0]}, {"Port ID", row[1]}, {"Port description", row[2]}, {"LLDP", row[3]}};
   addLocalTlvLines(fields, port);
   printFields(out, fields);
}

void run(const Options& options, Session& session) {
   Agent agent(session);
   Json system = agent.entity("l2discovery/lldp/localSystem", 1);
   Json view = localView(system, agent.entity("l2discovery/lldp/config", 1),
                         agent.entity("l2discovery/lldp/externalTlvs", 3).at("entityPtr"),
                         Agent::portsIn(system.at("localPort"), options.port));
   if (options.json) {
      session.out << Json{{"local", view}}.dump(2) << "\n";
   } else {
      printSystem(session.out, view);
      session.out << "\n";
      if (options.port) {
         printPort(session.out, view.at("ports").front());
      } else {
         printPorts(session.out, view.at("ports"), session.terminal);
      }
   }
}

}  // namespace

void addShowLocal(CLI::App& show, Session& session) {
   auto options = std::make_shared<Options>();
   CLI::App* command = show.add_subcommand("local", "what this switch says about itself");
   command->fallthrough();
   command->add_option("PORT", options->port, "of the ports only this one, and all that it says");
   command->add_flag("--json", options->json, "as JSON for scripts");
   command->callback([options, &session] { run(*options, session); });
}

}  // namespace LldpCli
