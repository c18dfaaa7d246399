#include "cli/ConfigSave.h"

#include <fmt/format.h>

#include <CLI/CLI.hpp>

#include "cli/Client.h"
#include "cli/Failure.h"
#include "cli/Octets.h"

namespace LldpCli {
namespace {

void run(bool json, Session& session) {
   if (session.store) {
      throw Failure(
          "'config save' is for the file of one agent; a state store keeps the settings by itself");
   }
   Client client(agentSocket(session), session.patience);
   Json answer = client.change("POST", "/v1/config/save");
   if (json) {
      session.out << answer.dump(-1, ' ', true) << "\n";
   } else {
      session.out << fmt::format("saved to {}\n", text(answer.at("file")));
   }
}

}  // namespace

void addConfigSave(CLI::App& config, Session& session) {
   CLI::App* command = config.add_subcommand("save", "keeps the settings over a restart");
   auto json = std::make_shared<bool>(false);
   command->fallthrough();
   command->add_flag("--json", *json, "as JSON for scripts");
   command->callback([json, &session] { run(*json, session); });
}

}  // namespace LldpCli
