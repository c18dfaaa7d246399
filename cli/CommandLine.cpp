#include "cli/CommandLine.h"

#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <sstream>

#include "Rex/Printable.h"
#include "cli/ClearNeighbors.h"
#include "cli/ClearPhones.h"
#include "cli/Completion.h"
#include "cli/ConfigSave.h"
#include "cli/DebugRedundancy.h"
#include "cli/Failure.h"
#include "cli/Help.h"
#include "cli/Man.h"
#include "cli/Set.h"
#include "cli/ShowConfig.h"
#include "cli/ShowInterfaces.h"
#include "cli/ShowLocal.h"
#include "cli/ShowNeighbors.h"
#include "cli/ShowPhones.h"
#include "cli/ShowPolicy.h"
#include "cli/ShowPower.h"
#include "cli/ShowStatistics.h"
#include "cli/Trace.h"
#include "cli/Watch.h"

namespace LldpCli {
namespace {

constexpr int failed = 1;
constexpr int misused = 2;

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

CLI::App& addGroup(CLI::App& app, const char* name, const char* description) {
   CLI::App* group = app.add_subcommand(name, description);
   wantCommand(*group);
   group->fallthrough();
   return *group;
}

// The parser's own words for things are not an operator's.
void name(CLI::App& app) {
   for (CLI::Option* option : app.get_options()) {
      if (option->get_positional()) option->type_name("");
   }
   app.get_help_ptr()->description("what the command does and takes");
   for (CLI::App* command : app.get_subcommands(nullptr)) {
      command->group("Commands");
      name(*command);
   }
}

// Where the management API is.
void addPlaces(CLI::App& app, Session& session) {
   auto* socket =
       app.add_option("--socket", session.socketPath, "socket of the agent's management API")
           ->type_name("PATH")
           ->capture_default_str();
   auto instead = [socket](const std::string&) {
      if (socket->count()) throw CLI::ValidationError("--socket and --store: expected one of them");
   };
   app.add_option("--store", session.store.url, "instead: the state store of all agents")
       ->type_name("URL")
       ->each(instead);
   app.add_option("--store-password-file", session.store.passwordFile, "file with its password")
       ->type_name("FILE")
       ->each(instead);
   // The words of the line count more than the environment.
   socket->each([&session](const std::string&) { session.store = {}; });
}

void describe(CLI::App& app, Session& session) {
   app.name("lldp");
   app.description("Shows and sets what the LLDP agent of this switch says and hears.");
   wantCommand(app);
   app.get_formatter()->column_width(24);
   app.get_formatter()->label("SUBCOMMAND", "COMMAND");
   app.get_formatter()->label("Positionals", "Arguments");
   addPlaces(app, session);
   CLI::App& show = addGroup(app, "show", "neighbors, local system, counters, ports, settings");
   addShowNeighbors(show, session);
   addShowLocal(show, session);
   addShowStatistics(show, session);
   addShowInterfaces(show, session);
   addShowPhones(show, session);
   addShowPolicy(show, session);
   addShowPower(show, session);
   addShowConfig(show, session);
   addWatch(app, session);
   addSet(app, session);
   addUnset(app, session);
   addConfigSave(addGroup(app, "config", "the settings as a whole"), session);
   CLI::App& clear = addGroup(app, "clear", "forgets what was learned");
   addClearNeighbors(clear, session);
   addClearPhones(clear, session);
   addTrace(app, session);
   addDebugRedundancy(addGroup(app, "debug", "for tests and repairs"), session);
   addCompletion(app, session);
   addMan(app, session);
   name(app);
   app.footer(examplesHelp());  // last: a subcommand would take it over
}

void parse(CLI::App& app, const std::vector<std::string>& words, Session& session) {
   if (!words.empty() && words[0] == completeCommand) {
      for (const std::string& word : completions(app, {words.begin() + 1, words.end()}, session)) {
         session.out << word << "\n";
      }
      return;
   }
   // The parser takes the words from the back.
   app.parse(std::vector<std::string>(words.rbegin(), words.rend()));
}

// What may stand where a word was not understood: behind the last command that was.
std::string expectedWords(const CLI::App& app) {
   const CLI::App* last = &app;
   while (!last->get_subcommands().empty()) last = last->get_subcommands().front();
   std::vector<std::string> words;
   for (const CLI::App* command : last->get_subcommands({})) words.push_back(command->get_name());
   for (const CLI::Option* option : last->get_options()) {
      if (last->get_parent() && option != last->get_help_ptr()) {
         words.push_back(option->get_name(option->get_positional()));
      }
   }
   return fmt::format("'{}' takes {}", last->get_name(),
                      words.empty() ? "no more words" : fmt::format("{}", fmt::join(words, ", ")));
}

void collectHelp(const CLI::App& app, const std::string& before, std::vector<std::string>& texts) {
   texts.push_back(app.help(before));
   for (const CLI::App* command : app.get_subcommands({})) {
      collectHelp(*command, before + app.get_name() + " ", texts);
   }
}

}  // namespace

int runCommandLine(const std::vector<std::string>& words, Session session, std::ostream& err) {
   auto complain = [&err](int status, const std::string& line) {
      err << "lldp: " << line << "\n";
      return status;
   };
   CLI::App app;
   describe(app, session);
   try {
      parse(app, words, session);
      if (session.gateway) session.gateway->finish();
      session.out.flush();
      return session.out ? 0 : complain(failed, "cannot write the output");
   } catch (const CLI::ExtrasError&) {
      return complain(misused,
                      fmt::format("'{}' is not expected here: {}; see lldp --help",
                                  Rex::printable(app.remaining(true).front()), expectedWords(app)));
   } catch (const CLI::ParseError& error) {
      if (error.get_exit_code() == 0) return app.exit(error, session.out, err);
      return complain(misused, Rex::printable(error.what()) + "; see lldp --help");
   } catch (const Misuse& misuse) {
      return complain(misused, misuse.what());
   } catch (const Json::exception& error) {
      return complain(failed, fmt::format("the agent's answer is not understood, which is of "
                                          "another version perhaps: {}",
                                          Rex::printable(error.what())));
   } catch (const Failure& failure) {
      auto fault = session.gateway ? session.gateway->fault() : std::nullopt;
      return complain(failed, fault.value_or(failure.what()));
   }
}

std::vector<std::string> allHelp() {
   std::ostringstream nowhere;
   Session session{nowhere};
   CLI::App app;
   describe(app, session);
   std::vector<std::string> texts;
   collectHelp(app, "", texts);
   return texts;
}

}  // namespace LldpCli
