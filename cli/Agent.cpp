#include "cli/Agent.h"

#include <fmt/format.h>
#include <string.h>

#include <set>

#include "Rex/Printable.h"
#include "cli/Failure.h"

namespace LldpCli {
namespace {

using Names = std::set<std::string, PortOrder>;

constexpr const char* mergedStatus = "l2discovery/lldp/status/all";

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

Agent::Agent(Session& session)
    : client_(agentSocket(session), session.patience),
      patience_(session.patience),
      elsewhere_(session.store) {
   Json agent = client_.get("/v1/agent");
   now_ = agent.at("time").get<double>();
   cell_ = agent.at("cell").get<int>();
   ownStatus_ = fmt::format("l2discovery/lldp/status/local/{}", cell_);
}

Json Agent::entity(const std::string& path, int levels) {
   return client_.get(fmt::format("/v1/entity/{}?depth={}", path, levels));
}

std::optional<Json> Agent::findPort(const std::string& path, std::string_view collection,
                                    std::string_view port, const std::string& query) {
   if (port.empty()) return std::nullopt;
   return client_.find(
       fmt::format("/v1/entity/{}/{}/{}{}", path, collection, Client::step(port), query));
}

Ports Agent::ports(const std::string& path, std::string_view collection) {
   Ports found;
   for (const std::string& name : namesIn(entity(path, 0).at(std::string(collection)))) {
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

void Agent::await(const std::function<bool()>& done) {
   constexpr std::chrono::milliseconds step(20);
   if (!elsewhere_) return;
   for (auto left = patience_.answer; !done(); left -= step) {
      if (left <= step) throw Failure("asked for, but no agent has done it yet");
      patience_.pause(step);
   }
}

std::optional<Json> Agent::findEntity(const std::string& path) {
   return client_.find(fmt::format("/v1/entity/{}?depth=0", path));
}

std::vector<std::string> Agent::portNames() {
   Names names;
   for (const std::string& path : {std::string(mergedStatus), ownStatus_}) {
      if (auto status = findEntity(path)) names.merge(namesIn(status->at("portStatus")));
   }
   return {names.begin(), names.end()};
}

std::optional<Json> Agent::findPortStatus(const std::string& port, bool withNeighbors) {
   const char* query = withNeighbors ? "" : "?depth=0";
   auto merged = findPort(mergedStatus, "portStatus", port, query);
   return merged ? merged : findPort(ownStatus_, "portStatus", port, query);
}

Ports Agent::portStatuses(const std::optional<std::string>& port, bool withNeighbors) {
   Ports found;
   for (const std::string& name : port ? std::vector{*port} : portNames()) {
      auto status = findPortStatus(name, withNeighbors);
      if (status) found.emplace(name, *std::move(status));
   }
   if (port && found.empty()) {
      auto names = portNames();
      noSuchPort(*port, {names.begin(), names.end()});
   }
   return found;
}

// A table without ports is kept by nobody, or says no more than this supervisor's own.
Json Agent::table() {
   auto merged = findEntity(mergedStatus);
   if (merged && !merged->at("portStatus").empty()) return *std::move(merged);
   auto own = findEntity(ownStatus_);
   if (!own && merged) return *std::move(merged);
   return own ? *std::move(own) : entity(ownStatus_, 0);
}

}  // namespace LldpCli
