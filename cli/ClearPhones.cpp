#include "cli/ClearPhones.h"

#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <algorithm>

#include "cli/Agent.h"
#include "cli/MacAddress.h"
#include "cli/Octets.h"
#include "cli/Phones.h"

namespace LldpCli {
namespace {

enum Target { byAddress = 1, byPort = 2, everyone = 3 };

// Requests of this command; a later one makes room.
constexpr std::string_view ours = "lldp ";

size_t countPhones(Agent& agent) {
   return agent.entity(std::string(phonesStatusPath), 1).at("neighbor").size();
}

Json requestFor(const std::optional<std::string>& target, const Session& session) {
   Json request{{"timestamp", session.wallTime()},
                {"clearedBy", session.user},
                {"clearedOn", session.line},
                {"targetType", everyone}};
   if (target) {
      auto mac = macAddress(*target);
      request["targetType"] = mac ? byAddress : byPort;
      request["target"] = mac.value_or(*target);
   }
   return {{"key", fmt::format("{}{:.6f}", ours, session.wallTime())}, {"value", request}};
}

void awaitCleared(Agent& agent, const Json& request) {
   agent.await([&] {
      Json done = agent.entity(std::string(phonesStatusPath), 1).at("clearRequestTime");
      return std::ranges::any_of(done, [&](const Json& one) {
         return one.at("key") == request.at("key") && one.at("value") != 0;
      });
   });
}

// A request is carried out when it comes. A phone that spoke in between is back already.
void run(const std::optional<std::string>& target, bool json, Session& session) {
   Agent agent(session);
   size_t count = countPhones(agent);
   Json requests = Json::array();
   Json config = agent.entity(std::string(phonesConfigPath), 1);
   for (const Json& request : config.at("clearRequest")) {
      if (!octets(request.at("key")).starts_with(ours)) requests.push_back(request);
   }
   requests.push_back(requestFor(target, session));
   agent.client().change("PATCH", fmt::format("/v1/entity/{}", phonesConfigPath),
                         {{"clearRequest", requests}});
   awaitCleared(agent, requests.back());
   count -= std::min(count, countPhones(agent));
   if (json) {
      session.out << Json{{"cleared", count}}.dump() << "\n";
   } else {
      session.out << fmt::format("{} phone{} cleared\n", count, count == 1 ? "" : "s");
   }
}

}  // namespace

void addClearPhones(CLI::App& clear, Session& session) {
   CLI::App* command =
       clear.add_subcommand("phones", "forgets phones until the next frame, if still heard");
   auto target = std::make_shared<std::optional<std::string>>();
   auto json = std::make_shared<bool>(false);
   command->fallthrough();
   command->add_option("PORT", *target, "only those of this port, or the one of this MAC address");
   command->add_flag("--json", *json, "as JSON for scripts");
   command->callback([target, json, &session] { run(*target, *json, session); });
}

}  // namespace LldpCli
