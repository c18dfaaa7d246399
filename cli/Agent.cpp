#include "cli/Agent.h"

#include <fmt/format.h>
#include <string.h>

#include <set>

#include "Rex/Printable.h"
#include "cli/Failure.h"

namespace LldpCli {
namespace {

using Names = std::set<std::string, PortOrder>;

// A collection comes as an object by key, or as a list of keys where its members live elsewhere.
Names namesIn(const Json& members) {
   Names names;
   if (members.is_object()) {
      for (const auto& [name, member] : members.items()) names.insert(name);
   } else {
      for (const Json& name : members) names.insert(name.get<std::string>());
   }
   return names;
}

[[noreturn]] void noSuchPort(const std::string& port, const Names& names) {
   constexpr size_t mostNames = 12;
   std::string known;
   size_t shown = 0;
   for (const std::string& name : names) {
      if (shown++ == mostNames) break;
      known += (known.empty() ? "" : ", ") + Rex::printable(name);
   }
   if (names.size() > mostNames) known += fmt::format(" and {} more", names.size() - mostNames);
   throw Failure(fmt::format("no port '{}'; {}", Rex::printable(port),
                             names.empty() ? "there are no ports" : "the ports are " + known));
}

}  // namespace

bool PortOrder::operator()(const std::string& a, const std::string& b) const {
   return strverscmp(a.c_str(), b.c_str()) < 0;
}

Agent::Agent(const Session& session) : client_(session.socketPath, session.patience) {
   Json agent = client_.get("/v1/agent");
   now_ = agent.at("time").get<double>();
   statusPath_ = fmt::format("l2discovery/lldp/status/local/{}", agent.at("cell").get<int>());
}

Json Agent::entity(const std::string& path, int levels) {
   return client_.get(fmt::format("/v1/entity/{}?depth={}", path, levels));
}

std::optional<Json> Agent::findPort(const std::string& path, std::string_view collection,
                                    std::string_view port) {
   if (port.empty()) return std::nullopt;
   return client_.find(fmt::format("/v1/entity/{}/{}/{}", path, collection, Client::step(port)));
}

Ports Agent::ports(const std::string& path, std::string_view collection,
                   const std::optional<std::string>& port) {
   Ports found;
   if (port) {
      if (auto member = findPort(path, collection, *port)) {
         found.emplace(*port, *std::move(member));
         return found;
      }
   }
   Names names = namesIn(entity(path, 0).at(std::string(collection)));
   if (port) noSuchPort(*port, names);
   for (const std::string& name : names) {
      // One that went away in between is not missed.
      if (auto member = findPort(path, collection, name)) found.emplace(name, *std::move(member));
   }
   return found;
}

Ports Agent::portsIn(const Json& members, const std::optional<std::string>& port) {
   if (port && !members.contains(*port)) noSuchPort(*port, namesIn(members));
   Ports found;
   for (const auto& [name, member] : members.items()) {
      if (!port || name == *port) found.emplace(name, member);
   }
   return found;
}

std::vector<std::string> Agent::portNames() {
   Names names = namesIn(entity(statusPath_, 0).at("portStatus"));
   return {names.begin(), names.end()};
}

}  // namespace LldpCli
