#include "cli/ShowConfig.h"

#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <sstream>

#include "Rex/Printable.h"
#include "cli/Agent.h"
#include "cli/Phones.h"
#include "cli/PortList.h"
#include "cli/SetPhone.h"
#include "cli/Settings.h"

namespace LldpCli {
namespace {

// Harmless, and still the same JSON.
std::string shown(const Json& json, int indent = -1) {
   return json.dump(indent, ' ', true);
}

// The path of a setting, with PORTS for the port.
const Setting* settingAt(const std::string& attribute) {
   for (const Setting& setting : allSettings()) {
      if (setting.attribute == attribute) return &setting;
   }
   return nullptr;
}

bool holdsPorts(const std::string& collection) {
   for (const Setting& setting : allSettings()) {
      if (setting.attribute.starts_with(fmt::format("{}/{}", collection, Setting::ports))) {
         return true;
      }
   }
   return false;
}

// As a command, or as a comment where there is no command for it.
void printSetting(std::ostream& out, const std::string& attribute, const std::string& port,
                  const Json& value) {
   const Setting* setting = settingAt(attribute);
   auto typed = setting ? typedValue(*setting, value) : std::nullopt;
   size_t slot = attribute.find(Setting::ports);
   if (!typed || (setting->ofPorts() && !isPortName(port))) {
      std::string place = attribute;
      if (slot != std::string::npos) place.replace(slot, Setting::ports.size(), port);
      out << fmt::format("# {}/{}: {}\n", configPath, Rex::printable(place), shown(value));
      return;
   }
   std::string words(setting->words);
   if (setting->ofPorts()) words.replace(words.find(Setting::ports), Setting::ports.size(), port);
   out << fmt::format("lldp set {} {}\n", words, *typed);
}

void printPorts(std::ostream& out, const std::string& collection, const Json& rows) {
   for (const auto& [port, row] : Agent::portsIn(rows, std::nullopt)) {
      if (!row.is_object()) {
         printSetting(out, collection + "/" + port, port, row);
         continue;
      }
      // A row of nothing but defaults has no members, and says nothing.
      for (const auto& [name, value] : row.items()) {
         printSetting(out, fmt::format("{}/{}/{}", collection, Setting::ports, name), port, value);
      }
   }
}

// False where there is another thing than a list of them.
bool printPhones(std::ostream& out, const Json& attributes) {
   if (!attributes.is_object() || !attributes.contains("neighbor")) return false;
   const Json& entries = attributes.at("neighbor");
   if (attributes.size() != 1 || !entries.is_array()) return false;
   for (const Json& entry : entries) {
      out << typedPhone(entry).value_or(fmt::format("# {}: {}", phonesConfigPath, shown(entry)))
          << "\n";
   }
   return true;
}

void printConfig(std::ostream& out, const Json& config) {
   for (const auto& [path, attributes] : config.items()) {
      if (path == phonesConfigPath && printPhones(out, attributes)) continue;
      if (path != configPath || !attributes.is_object()) {
         out << fmt::format("# {}: {}\n", Rex::printable(path), shown(attributes));
         continue;
      }
      for (const auto& [name, value] : attributes.items()) {
         if (value.is_object() && holdsPorts(name)) {
            printPorts(out, name, value);
         } else {
            printSetting(out, name, "", value);
         }
      }
   }
}

void run(bool json, Session& session) {
   Json config = Client(agentSocket(session), session.patience).get("/v1/config");
   if (json) {
      session.out << shown(Json{{"config", config}}, 2) << "\n";
   } else {
      std::ostringstream lines;
      printConfig(lines, config);
      session.out << (lines.view().empty() ? "# everything has its default\n" : lines.view());
   }
}

}  // namespace

void addShowConfig(CLI::App& show, Session& session) {
   auto json = std::make_shared<bool>(false);
   CLI::App* command =
       show.add_subcommand("config", "what differs from the defaults, as commands to paste");
   command->fallthrough();
   command->add_flag("--json", *json, "as JSON for scripts");
   command->callback([json, &session] { run(*json, session); });
}

}  // namespace LldpCli
