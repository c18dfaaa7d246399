#include "cli/ShowPhones.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <set>

#include "cli/Agent.h"
#include "cli/Octets.h"
#include "cli/Phones.h"
#include "cli/Table.h"

namespace LldpCli {
namespace {

Json phonesOf(Agent& agent) {
   std::set<std::string> entered;
   Json config = agent.entity(std::string(phonesConfigPath), 1);
   for (const Json& entry : config.at("neighbor")) {
      entered.insert(text(entry.at("ethAddr")));
   }
   std::vector<Json> rows;
   Json status = agent.entity(std::string(phonesStatusPath), 1);
   for (const Json& row : status.at("neighbor")) {
      std::string mac = text(row.at("ethAddr"));
      Json view{{"mac", mac}};
      std::string port = text(row.at("intfId"));
      if (!port.empty()) view["port"] = port;
      view["phone"] = (row.at("classification").at("flags").get<unsigned>() & 1) != 0;
      view["source"] = entered.contains(mac) ? "operator" : "lldp";
      rows.push_back(std::move(view));
   }
   PortOrder before;
   std::ranges::sort(rows, [&](const Json& a, const Json& b) {
      std::string portA = a.value("port", "");
      std::string portB = b.value("port", "");
      return portA == portB ? a.at("mac") < b.at("mac") : before(portA, portB);
   });
   return rows;
}

void printTable(std::ostream& out, const Json& phones, const Terminal& terminal) {
   Table table({{"Port", Column::Kind::name}, {"MAC"}, {"Phone"}, {"Known by"}});
   for (const Json& row : phones) {
      table.add({row.value("port", ""), row.at("mac"), row.at("phone").get<bool>() ? "yes" : "no",
                 row.at("source") == "lldp" ? "LLDP" : "operator"});
   }
   table.print(out, terminal);
}

void run(bool json, Session& session) {
   Agent agent(session);
   Json phones = phonesOf(agent);
   if (json) {
      session.out << Json{{"phones", phones}}.dump(2) << "\n";
   } else if (phones.empty()) {
      session.out << "no phones\n";
   } else {
      printTable(session.out, phones, session.terminal);
   }
}

}  // namespace

void addShowPhones(CLI::App& show, Session& session) {
   auto json = std::make_shared<bool>(false);
   CLI::App* command = show.add_subcommand("phones", "which MAC addresses belong to telephones");
   command->fallthrough();
   command->add_flag("--json", *json, "as JSON for scripts");
   command->callback([json, &session] { run(*json, session); });
}

}  // namespace LldpCli
