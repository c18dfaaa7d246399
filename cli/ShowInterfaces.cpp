#include "cli/ShowInterfaces.h"

#include <CLI/CLI.hpp>

#include "Rex/Printable.h"
#include "cli/AdminStatus.h"
#include "cli/Agent.h"
#include "cli/Octets.h"
#include "cli/Table.h"

namespace LldpCli {
namespace {

std::string linkName(const Json& portStatus) {
   const Json& status = portStatus.at("linkStatus");
   return status == "linkUp" ? "up" : status == "linkDown" ? "down" : "unknown";
}

Json interfacesOf(Agent& agent) {
   Json portConfigs = agent.entity("l2discovery/lldp/config", 1).at("portConfig");
   Json list = Json::array();
   for (const auto& [port, status] : agent.ports("interface/status/eth/phy/all", "intfStatus")) {
      Json view{{"port", Rex::printable(port)}};
      // The status of a port and that of the device behind it come and go by themselves.
      if (auto intf = agent.findPort("interface/status/all", "intfStatus", port)) {
         std::string device = text(intf->at("deviceName"));
         if (!device.empty()) view["device"] = device;
      }
      view["link"] = linkName(status);
      view["mac"] = text(status.at("ethAddr"));
      if (portConfigs.contains(port)) view["adminStatus"] = adminStatus(portConfigs.at(port));
      list.push_back(std::move(view));
   }
   return list;
}

void printTable(std::ostream& out, const Json& interfaces, const Terminal& terminal) {
   Table table({{"Port", Column::Kind::name}, {"Device"}, {"Link"}, {"MAC"}, {"LLDP"}});
   for (const Json& view : interfaces) {
      std::string link = view.at("link");
      table.add({view.at("port"), view.value("device", ""), link, view.at("mac"),
                 adminStatusWords(view.value("adminStatus", ""))},
                link == "down" ? Style::bad : Style::plain);
   }
   table.print(out, terminal);
}

void run(bool json, Session& session) {
   Agent agent(session);
   Json interfaces = interfacesOf(agent);
   if (json) {
      session.out << Json{{"interfaces", interfaces}}.dump(2) << "\n";
   } else if (interfaces.empty()) {
      session.out << "no interfaces\n";
   } else {
      printTable(session.out, interfaces, session.terminal);
   }
}

}  // namespace

void addShowInterfaces(CLI::App& show, Session& session) {
   auto json = std::make_shared<bool>(false);
   CLI::App* command = show.add_subcommand("interfaces", "the ports, their devices and links");
   command->fallthrough();
   command->add_flag("--json", *json, "as JSON for scripts");
   command->callback([json, &session] { run(*json, session); });
}

}  // namespace LldpCli
