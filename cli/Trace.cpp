#include "cli/Trace.h"

#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <set>

#include "Rex/Printable.h"
#include "cli/Client.h"
#include "cli/Failure.h"
#include "cli/Table.h"

namespace LldpCli {
namespace {

constexpr const char* resource = "/v1/agent/trace";
constexpr int levelCount = 10;

struct Options {
   std::optional<std::string> facility;
   std::optional<std::string> levels;
   bool json = false;
};

std::string levelWords(const Json& levels) {
   if (levels.empty()) return "off";
   std::string words;
   for (const Json& level : levels) {
      words += fmt::format("{}{}", words.empty() ? "" : ",", level.get<int>());
   }
   return words;
}

// 0,4,6 or 0-6, or both in one list.
Json levelList(const std::string& words) {
   if (words == "off") return Json::array();
   std::set<int> levels;
   if (words == "all") {
      for (int level = 0; level < levelCount; ++level) levels.insert(level);
      return levels;
   }
   auto isLevel = [&words](size_t at) { return at < words.size() && std::isdigit(words[at]); };
   for (size_t at = 0;; ++at) {
      bool range = isLevel(at) && at + 1 < words.size() && words[at + 1] == '-';
      size_t last = range ? at + 2 : at;
      bool good = isLevel(at) && isLevel(last) && words[at] <= words[last];
      bool ends = last + 1 == words.size();
      if (!good || (!ends && words[last + 1] != ',')) {
         throw Misuse(
             fmt::format("LEVELS: expected levels from 0 to {} such as 0,4,6 or 0-6, "
                         "or all, or off, got '{}'",
                         levelCount - 1, Rex::printable(words)));
      }
      for (int level = words[at] - '0'; level <= words[last] - '0'; ++level) levels.insert(level);
      if (ends) return levels;
      at = last + 1;
   }
}

void show(const Json& trace, const Options& options, Session& session) {
   const std::optional<std::string>& facility = options.facility;
   if (facility && !trace.contains(*facility)) {
      std::string known;
      for (const auto& [name, levels] : trace.items()) {
         known += (known.empty() ? "" : ", ") + Rex::printable(name);
      }
      throw Failure(
          fmt::format("no trace facility '{}'; there are {}", Rex::printable(*facility), known));
   }
   if (options.json) {
      Json chosen = facility ? Json{{*facility, trace.at(*facility)}} : trace;
      session.out << Json{{"trace", chosen}}.dump(2, ' ', true) << "\n";
      return;
   }
   Table table({{"Facility", Column::Kind::name}, {"Levels"}});
   for (const auto& [name, levels] : trace.items()) {
      if (!facility || name == *facility) table.add({Rex::printable(name), levelWords(levels)});
   }
   table.print(session.out, session.terminal);
}

void run(const Options& options, Session& session) {
   if (session.store) throw Failure("'trace' is for one agent; name its socket with --socket PATH");
   Client client(agentSocket(session), session.patience);
   if (options.levels) {
      client.change("PATCH", resource, {{*options.facility, levelList(*options.levels)}});
      if (options.json) session.out << "{}\n";
   } else {
      show(client.get(resource), options, session);
   }
}

}  // namespace

void addTrace(CLI::App& app, Session& session) {
   auto options = std::make_shared<Options>();
   CLI::App* command =
       app.add_subcommand("trace", "shows or sets what the agent traces on standard error");
   command->fallthrough();
   command->add_option("FACILITY", options->facility, "only this one, such as LldpProtocol");
   command->add_option("LEVELS", options->levels, "0 to 9, such as 0,4,6 or 0-6; all; off");
   command->add_flag("--json", options->json, "as JSON for scripts");
   command->callback([options, &session] { run(*options, session); });
}

}  // namespace LldpCli
