#include "cli/Set.h"

#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <set>

#include "cli/Agent.h"
#include "cli/Failure.h"
#include "cli/Help.h"
#include "cli/SetPhone.h"
#include "cli/SettingWords.h"

namespace LldpCli {
namespace {

using Words = std::vector<std::string>;
using PortSet = std::set<std::string, PortOrder>;

// The changes of one call, and the words that each came from.
struct Changes {
   Json list = Json::array();
   Words words;

   void add(const Typed& typed, Json change) {
      list.push_back(std::move(change));
      words.push_back(typed.words);
   }
};

// A port's settings stand in a row of their own: collection, port, attribute.
struct PortPlace {
   std::string collection;
   std::string attribute;

   explicit PortPlace(const Setting& setting) {
      size_t slot = setting.attribute.find(Setting::ports);
      collection = setting.attribute.substr(0, slot - 1);
      attribute = setting.attribute.substr(slot + Setting::ports.size() + 1);
   }
   std::string row(const std::string& port) const {
      return fmt::format("{}/{}/{}", configPath, collection, Client::step(port));
   }
};

void addSetting(Changes& changes, const Typed& typed) {
   const Setting& setting = *typed.setting;
   if (!setting.ofPorts()) {
      changes.add(typed, {{"method", "PATCH"},
                          {"path", configPath},
                          {"body", {{std::string(setting.attribute), typed.value}}}});
   }
   for (const std::string& port : typed.ports) {
      PortPlace place(setting);
      changes.add(typed, {{"method", "PUT"},
                          {"path", place.row(port)},
                          {"body", {{place.attribute, typed.value}}}});
   }
}

// A port without a row has the defaults already.
void addUnsetting(Changes& changes, const Typed& typed, Client& client) {
   const Setting& setting = *typed.setting;
   if (!setting.ofPorts()) {
      changes.add(typed, {{"method", "DELETE"},
                          {"path", fmt::format("{}/{}", configPath, setting.attribute)}});
   }
   for (const std::string& port : typed.ports) {
      PortPlace place(setting);
      std::string row = place.row(port);
      if (!client.find("/v1/entity/" + row)) continue;
      changes.add(typed,
                  {{"method", "DELETE"}, {"path", fmt::format("{}/{}", row, place.attribute)}});
   }
}

void apply(Client& client, const Changes& changes) {
   if (changes.list.empty()) return;
   try {
      client.change("POST", "/v1/changes", {{"changes", changes.list}});
   } catch (const Refused& refused) {
      if (!refused.change() || *refused.change() >= changes.words.size()) throw;
      throw Failure(fmt::format("'{}': {}; nothing was changed", changes.words[*refused.change()],
                                refused.what()));
   }
}

// A port may come later, or its name may be a slip.
PortSet missingPorts(const std::vector<Typed>& settings, Session& session) {
   PortSet missing;
   for (const Typed& typed : settings) missing.insert(typed.ports.begin(), typed.ports.end());
   if (missing.empty()) return {};
   try {
      for (const std::string& port : Agent(session).portNames()) missing.erase(port);
   } catch (const Failure&) {
      return {};  // what was set is set
   }
   return missing;
}

void tell(const PortSet& missing, bool json, Session& session) {
   if (json) {
      Json answer = Json::object();
      if (!missing.empty()) answer["missing"] = missing;
      session.out << answer.dump() << "\n";
   } else if (!missing.empty()) {
      session.out << fmt::format("not there yet, but set for when it comes: {}\n",
                                 fmt::join(missing, ", "));
   }
}

// Changes settings; returns the ports among them that are not there.
PortSet runSet(const Words& words, Session& session) {
   std::vector<Typed> settings = readSettings(words, true);
   Changes changes;
   for (const Typed& typed : settings) addSetting(changes, typed);
   {
      Client client(agentSocket(session), session.patience);
      apply(client, changes);
   }
   return missingPorts(settings, session);
}

PortSet runUnset(const Words& words, Session& session) {
   std::vector<Typed> settings = readSettings(words, false);
   Client client(agentSocket(session), session.patience);
   Changes changes;
   for (const Typed& typed : settings) addUnsetting(changes, typed, client);
   apply(client, changes);
   return {};
}

CLI::App& add(CLI::App& app, Session& session, const char* name, const char* description,
              PortSet (*run)(const Words&, Session&)) {
   auto words = std::make_shared<Words>();
   CLI::App* command = app.add_subcommand(name, description);
   command->fallthrough();
   command->add_option("SETTING", *words, "one setting after another, as below")->expected(-1);
   auto json = std::make_shared<bool>(false);
   command->add_flag("--json", *json, "answers with JSON, for scripts");
   command->footer(settingsHelp(run == runSet));
   command->callback([words, json, run, command, &session] {
      if (!command->get_subcommands().empty()) return;
      tell(run(*words, session), *json, session);
   });
   return *command;
}

}  // namespace

void addSet(CLI::App& app, Session& session) {
   CLI::App& set = add(app, session, "set", "changes settings, all of a call or none", runSet);
   addSetPhone(set, session);
}

void addUnset(CLI::App& app, Session& session) {
   CLI::App& unset = add(app, session, "unset", "gives settings their defaults back", runUnset);
   addUnsetPhone(unset, session);
}

}  // namespace LldpCli
