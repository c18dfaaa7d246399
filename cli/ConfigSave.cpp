#include "cli/ConfigSave.h"

#include <fmt/format.h>

#include <CLI/CLI.hpp>

#include "cli/Client.h"
#include "cli/Octets.h"

namespace LldpCli {
namespace {

void run(Session& session) {
   Client client(session.socketPath, session.patience);
   Json answer = client.change("POST", "/v1/config/save");
   session.out << fmt::format("saved to {}\n", text(answer.at("file")));
}

}  // namespace

void addConfigSave(CLI::App& config, Session& session) {
   CLI::App* command = config.add_subcommand("save", "keeps the settings over a restart");
   command->fallthrough();
   command->callback([&session] { run(session); });
}

}  // namespace LldpCli
