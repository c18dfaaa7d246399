#include "cli/SetPhone.h"

#include <fmt/format.h>

#include <CLI/CLI.hpp>

#include "Rex/Printable.h"
#include "cli/Agent.h"
#include "cli/Failure.h"
#include "cli/MacAddress.h"
#include "cli/Octets.h"
#include "cli/Phones.h"

namespace LldpCli {
namespace {

constexpr const char* yes = "yes";
constexpr const char* no = "no";

struct Words {
   std::string mac;
   std::string phone;  // yes or no; empty for no entry
   bool json = false;
};

Json entryFor(const std::string& mac, bool phone) {
   return {{"ethAddr", mac}, {"classification", {{"flags", phone ? 1 : 0}}}};
}

// The entries as a whole with this one changed.
void run(const Words& words, const CLI::App& command, Session& session) {
   const CLI::App& settings = *command.get_parent();
   if (settings.get_option("SETTING")->count()) {
      throw Misuse(fmt::format("'{} phone' stands in a line of its own", settings.get_name()));
   }
   auto mac = macAddress(words.mac);
   if (!mac) {
      throw Misuse(fmt::format("phone: expected a MAC address such as 02:00:00:01:02:03, got '{}'",
                               Rex::printable(words.mac)));
   }
   Agent agent(session);
   Json entries = Json::array();
   Json config = agent.entity(std::string(phonesConfigPath), 1);
   for (const Json& entry : config.at("neighbor")) {
      if (entry.at("ethAddr") != *mac) entries.push_back(entry);
   }
   if (!words.phone.empty()) entries.push_back(entryFor(*mac, words.phone == yes));
   agent.client().change("PATCH", fmt::format("/v1/entity/{}", phonesConfigPath),
                         {{"neighbor", entries}});
   if (words.json) session.out << "{}\n";
}

CLI::App* add(CLI::App& settings, const char* description, std::shared_ptr<Words> words,
              Session& session) {
   CLI::App* command = settings.add_subcommand("phone", description);
   command->fallthrough();
   command->footer("");  // the settings are not its own
   command->add_option("MAC", words->mac, "source address of the device's frames")->required();
   command->add_flag("--json", words->json, "answers with JSON, for scripts");
   command->callback([words, command, &session] { run(*words, *command, session); });
   return command;
}

}  // namespace

void addSetPhone(CLI::App& set, Session& session) {
   auto words = std::make_shared<Words>();
   add(set, "says whether a MAC address is a phone's", words, session)
       ->add_option("PHONE", words->phone, "yes or no")
       ->required()
       ->check(CLI::IsMember({yes, no}));
}

void addUnsetPhone(CLI::App& unset, Session& session) {
   add(unset, "leaves a MAC address to what is heard of it", std::make_shared<Words>(), session);
}

std::optional<std::string> typedPhone(const Json& entry) {
   try {
      auto mac = macAddress(entry.at("ethAddr").get<std::string>());
      unsigned flags = entry.at("classification").at("flags").get<unsigned>();
      if (!mac || flags > 1 || entry.at("intfId") != "") return std::nullopt;
      return fmt::format("lldp set phone {} {}", *mac, flags ? yes : no);
   } catch (const Json::exception&) {
      return std::nullopt;
   }
}

}  // namespace LldpCli
