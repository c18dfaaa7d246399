#include "cli/DebugRedundancy.h"

#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <array>

#include "Rex/Printable.h"
#include "cli/Agent.h"
#include "cli/Failure.h"
#include "cli/Octets.h"
#include "cli/Table.h"

namespace LldpCli {
namespace {

// The roles of a supervisor, and what the platform's entity holds for each.
struct Role {
   const char* name;
   const char* protocol;
   const char* mode;
};
constexpr auto roles = std::to_array<Role>({
    {"active", "protocolHotStandby", "modeActive"},
    {"standby", "protocolHotStandby", "modeStandby"},
    {"none", "protocolNone", "modeUnknown"},
});
constexpr const Role& activeRole = roles[0];
constexpr const Role& standbyRole = roles[1];
const std::array<std::string, 2> cells = {"1", "2"};

struct Options {
   std::vector<std::string> words;
   bool json = false;
};

std::string pathOf(const std::string& cell) {
   return fmt::format("cell/{}/redundancy/status", cell);
}

bool isCell(const std::string& word) {
   return std::ranges::find(cells, word) != cells.end();
}

const Role& roleOf(const std::string& word) {
   for (const Role& role : roles) {
      if (role.name == word) return role;
   }
   throw Misuse(
       fmt::format("ROLE: expected active, standby or none, got '{}'", Rex::printable(word)));
}

Json changeOf(const std::string& cell, const Role& role) {
   return {{"method", "PATCH"},
           {"path", pathOf(cell)},
           {"body", {{"protocol", role.protocol}, {"mode", role.mode}}}};
}

// Under no other protocol does a supervisor wait for its turn.
bool isActive(const Json& status) {
   return text(status.at("protocol")) != activeRole.protocol ||
          text(status.at("mode")) == activeRole.mode;
}

// Without a number it is the agent's own cell. The other supervisor steps back first, and all of it
// is one change: two active ones would write the same state.
void set(const Options& options, Session& session) {
   const auto& words = options.words;
   if (words.size() > 1 && !isCell(words[0])) {
      throw Misuse(fmt::format("CELL: expected 1 or 2, got '{}'", Rex::printable(words[0])));
   }
   const Role& role = roleOf(words.back());
   Agent agent(session);
   std::string cell = words.size() > 1 ? words[0] : std::to_string(agent.cell());
   Json changes = Json::array();
   if (&role == &activeRole) {
      const std::string& other = cells[cell == cells[0] ? 1 : 0];
      auto status = agent.findEntity(pathOf(other));
      if (status && isActive(*status)) changes.push_back(changeOf(other, standbyRole));
   }
   changes.push_back(changeOf(cell, role));
   agent.client().change("POST", "/v1/changes", {{"changes", changes}});
   if (options.json) session.out << "{}\n";
}

void show(const Options& options, Session& session) {
   Agent agent(session);
   Json list = Json::array();
   for (const std::string& cell : cells) {
      auto status = agent.findEntity(pathOf(cell));
      if (!status) continue;
      list.push_back({{"cell", std::stoi(cell)},
                      {"protocol", text(status->at("protocol"))},
                      {"mode", text(status->at("mode"))}});
   }
   if (options.json) {
      session.out << Json{{"redundancy", list}}.dump(2) << "\n";
      return;
   }
   Table table({{"Cell", Column::Kind::number}, {"Protocol"}, {"Mode"}});
   for (const Json& row : list) {
      table.add({std::to_string(row.at("cell").get<int>()), row.at("protocol"), row.at("mode")});
   }
   table.print(session.out, session.terminal);
}

}  // namespace

std::vector<std::string> nextRoleWords(const std::vector<std::string>& words) {
   std::vector<std::string> next;
   bool cellFirst = words.size() == 1 && isCell(words[0]);
   if (!words.empty() && !cellFirst) return next;
   for (const Role& role : roles) next.push_back(role.name);
   if (!cellFirst) next.insert(next.end(), cells.begin(), cells.end());
   return next;
}

void addDebugRedundancy(CLI::App& debug, Session& session) {
   auto options = std::make_shared<Options>();
   CLI::App* command =
       debug.add_subcommand("redundancy", "which supervisor is active, in the platform's stead");
   command->fallthrough();
   command
       ->add_option("ROLE", options->words, "active, standby or none; before it 1 or 2 for a cell")
       ->expected(0, 2);
   command->add_flag("--json", options->json, "as JSON for scripts");
   command->callback([options, &session] {
      options->words.empty() ? show(*options, session) : set(*options, session);
   });
}

}  // namespace LldpCli
