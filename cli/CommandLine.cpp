#include "cli/CommandLine.h"

#include <fmt/format.h>

#include <CLI/CLI.hpp>

#include "Rex/Printable.h"
#include "cli/Client.h"
#include "cli/Failure.h"
#include "cli/Session.h"
#include "cli/ShowInterfaces.h"
#include "cli/ShowLocal.h"
#include "cli/ShowNeighbors.h"
#include "cli/ShowStatistics.h"

namespace LldpCli {
namespace {

constexpr int failed = 1;
constexpr int misused = 2;

constexpr const char* examples = R"TEXT(Examples:
  lldp show neighbors                   who is at the other end of each cable
  lldp show neighbors Ethernet1 detail  everything the neighbor on one port says
  lldp show neighbors --json | jq -r '.neighbors[] | "\(.port) \(.systemName)"'
  lldp show local                       what this switch says about itself
  lldp show statistics Ethernet1        frames sent, received and refused on one port
  lldp show interfaces                  which device stands behind which port

The command talks to lldp-agentd through its socket; the permissions of the socket
decide who may. 'lldp show neighbors --help' tells more of one command.)TEXT";

// Without a command that follows, `app` says which there are.
void wantCommand(CLI::App& app) {
   app.require_subcommand(0, 1);
   app.callback([&app] {
      if (!app.get_subcommands().empty()) return;
      std::string names;
      for (const CLI::App* command : app.get_subcommands(nullptr)) {
         names += (names.empty() ? "" : ", ") + command->get_name();
      }
      throw CLI::ValidationError("'" + app.get_name() + "' wants one of " + names);
   });
}

void describe(CLI::App& app, Session& session) {
   app.name("lldp");
   app.description("Shows what the LLDP agent of this switch says and hears.");
   wantCommand(app);
   app.get_formatter()->column_width(24);
   app.add_option("--socket", session.socketPath, "socket of the agent's management API")
       ->type_name("PATH")
       ->capture_default_str();
   CLI::App* show = app.add_subcommand("show", "shows neighbors, local system, counters, ports");
   wantCommand(*show);
   show->fallthrough();
   addShowNeighbors(*show, session);
   addShowLocal(*show, session);
   addShowStatistics(*show, session);
   addShowInterfaces(*show, session);
   app.footer(examples);  // last: a subcommand would take it over
}

}  // namespace

int runCommandLine(const std::vector<std::string>& words, std::optional<size_t> width,
                   std::ostream& out, std::ostream& err) {
   auto complain = [&err](int status, const std::string& line) {
      err << "lldp: " << line << "\n";
      return status;
   };
   Session session{out, width};
   CLI::App app;
   describe(app, session);
   try {
      // The parser takes the words from the back.
      app.parse(std::vector<std::string>(words.rbegin(), words.rend()));
      out.flush();
      return out ? 0 : complain(failed, "cannot write the output");
   } catch (const CLI::ParseError& error) {
      if (error.get_exit_code() == 0) return app.exit(error, out, err);
      return complain(misused, Rex::printable(error.what()) + "; see lldp --help");
   } catch (const Json::exception& error) {
      return complain(failed, fmt::format("the agent's answer is not understood, which is of "
                                          "another version perhaps: {}",
                                          Rex::printable(error.what())));
   } catch (const Failure& failure) {
      return complain(failed, failure.what());
   }
}

}  // namespace LldpCli
