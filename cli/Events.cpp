#include "cli/Events.h"

#include <fmt/format.h>
#include <time.h>

#include <algorithm>
#include <array>
#include <cmath>

#include "Rex/Printable.h"
#include "cli/BasicTlvs.h"
#include "cli/Names.h"
#include "cli/Neighbor.h"

namespace LldpCli {
namespace {

std::string localTime(double time) {
   auto seconds = static_cast<time_t>(std::floor(time));
   tm local{};
   localtime_r(&seconds, &local);
   std::array<char, 32> text{};
   strftime(text.data(), text.size(), "%Y-%m-%d %H:%M:%S", &local);
   return text.data();
}

std::string reasonWords(const std::string& reason) {
   return reason == "shutdown"          ? "shut down"
          : reason == "timedOut"        ? "timed out"
          : reason == "cleared"         ? "cleared"
          : reason == "portLost"        ? "port lost"
          : reason == "otherSupervisor" ? "by the other supervisor"
          : reason == "byAgent"         ? "by its agent"
                                        : reason;
}

std::string identity(const Json& neighbor) {
   return fmt::format("{}, chassis {}, port {}", neighborName(neighbor),
                      identifierWords(neighbor.at("chassis")),
                      identifierWords(neighbor.at("portId")));
}

std::string changes(const Json& view) {
   const Json& names = view.at("changed");
   std::string words;
   for (const auto& [label, value] : changedFields(view.at("neighbor"), names)) {
      words += fmt::format("{}{}: {}", words.empty() ? "" : "; ", label, value);
   }
   return words.empty() ? listWords(names) : words;
}

// In the JSON for scripts; a value and its flag are one there.
Json changedNames(const Json& attributes) {
   Json names = Json::array();
   for (const Json& attribute : attributes) {
      auto own = attribute.get<std::string>();
      const NeighborItem* item = neighborItem(own);
      std::string name = item ? item->name : Rex::printable(own);
      if (std::ranges::find(names, Json(name)) == names.end()) names.push_back(name);
   }
   return names;
}

std::string words(const std::string& event, const Json& view) {
   if (event == "port-up") return "port up";
   if (event == "port-down") return "port down";
   if (event == "standing-end") return "this is what stands; from here on what changes";
   if (!view.contains("neighbor")) return event;
   const Json& neighbor = view.at("neighbor");
   if (event == "neighbor-added") return "neighbor added: " + identity(neighbor);
   if (event == "neighbor-standing") return "neighbor: " + identity(neighbor);
   if (event == "neighbor-changed") {
      return fmt::format("neighbor changed: {}: {}", neighborName(neighbor), changes(view));
   }
   if (event == "neighbor-gone") {
      return fmt::format("neighbor gone ({}): {}", reasonWords(view.value("reason", "")),
                         identity(neighbor));
   }
   return fmt::format("{}: {}", event, identity(neighbor));
}

}  // namespace

Json eventView(const std::string& name, const Json& data, double behind) {
   Json view{{"event", Rex::printable(name)}};
   if (name == "missed") view["events"] = data.at("events").get<unsigned long long>();
   if (data.contains("time")) {
      view["time"] = std::round((data.at("time").get<double>() + behind) * 1000) / 1000;
   }
   if (!data.contains("port")) return view;
   std::string port = data.at("port");
   view["port"] = Rex::printable(port);
   if (data.contains("reason"))
      view["reason"] = Rex::printable(data.at("reason").get<std::string>());
   if (data.contains("changed")) {
      view["changed"] = changedNames(data.at("changed"));
   }
   if (data.contains("neighbor")) {
      view["neighbor"] = neighbor(port, data.at("neighbor"), data.at("time").get<double>());
   }
   return view;
}

std::string eventLine(const Json& view) {
   std::string event = view.at("event");
   if (event == "missed") {
      return fmt::format("{} events were missed here: they came faster than they were read",
                         view.at("events").get<unsigned long long>());
   }
   std::string line = view.contains("time") ? localTime(view.at("time")) + "  " : "";
   if (view.contains("port")) line += view.at("port").get<std::string>() + "  ";
   return line + words(event, view);
}

}  // namespace LldpCli
