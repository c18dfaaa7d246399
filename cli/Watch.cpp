#include "cli/Watch.h"

#include <fmt/format.h>

#include <CLI/CLI.hpp>

#include "Rex/Printable.h"
#include "cli/Agent.h"
#include "cli/EventStream.h"
#include "cli/Events.h"
#include "cli/Failure.h"
#include "cli/PortList.h"

namespace LldpCli {
namespace {

struct Options {
   std::optional<std::string> port;
   bool standing = false;
   bool json = false;
};

Style styleOf(const Json& view) {
   std::string event = view.at("event");
   if (event == "port-down" || event == "missed") return Style::bad;
   return event == "neighbor-gone" ? Style::faint : Style::plain;
}

void print(const Json& view, bool json, Session& session) {
   if (json) {
      session.out << view.dump() << "\n";
   } else {
      session.out << styled(eventLine(view), styleOf(view), session.terminal) << "\n";
   }
   // Whoever reads a line behind a pipe wants it when it is there.
   if (!session.out.flush()) throw Failure("cannot write the output");
}

// Ends with a Failure only: when the agent goes, or the reader.
void run(const Options& options, Session& session) {
   if (options.port && !isPortName(*options.port)) {
      throw Misuse(fmt::format("PORT: expected the name of a port such as Ethernet1, got '{}'",
                               Rex::printable(*options.port)));
   }
   Agent agent(session);
   bool there = !options.port || agent.findPortStatus(*options.port, false);
   if (!there && !options.json) {
      session.out << fmt::format("no port {} yet; waiting for it\n", *options.port) << std::flush;
   }
   double behind = session.wallTime() - agent.now();
   EventStream events([&](const std::string& name, const std::string& data) {
      Json json = Json::parse(data, nullptr, false);
      if (!json.is_object()) throw Failure("the agent sends an event that is not JSON");
      bool elsewhere = options.port && json.contains("port") && json["port"] != *options.port;
      if (!elsewhere) print(eventView(name, json, behind), options.json, session);
   });
   agent.client().stream(options.standing ? "/v1/events?standing=1" : "/v1/events",
                         [&](std::string_view octets) { events.put(octets); });
}

}  // namespace

void addWatch(CLI::App& app, Session& session) {
   auto options = std::make_shared<Options>();
   CLI::App* command = app.add_subcommand("watch", "tells what happens, line by line, until ^C");
   command->fallthrough();
   command->add_option("PORT", options->port, "only this port, such as Ethernet1");
   command->add_flag("--standing", options->standing, "begins with what stands");
   command->add_flag("--json", options->json, "one JSON object a line, for scripts");
   command->callback([options, &session] { run(*options, session); });
}

}  // namespace LldpCli
