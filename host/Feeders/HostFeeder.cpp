#include "host/Feeders/HostFeeder.h"

#include "Statestore/Cell.h"
#include "host/Feeders/FedEntity.h"

namespace Host {
namespace {

constexpr const char* mibPath = "hardware/entmib";

Rex::String netPath(int cell) {
   return Cell::path("sys/net/status", cell);
}

// A value as the shell would read it (os-release(5)).
std::string unquoted(std::string_view text) {
   bool quoted = text.size() >= 2 && (text.front() == '"' || text.front() == '\'') &&
                 text.back() == text.front();
   bool plain = quoted && text.front() == '\'';
   if (quoted) text = text.substr(1, text.size() - 2);
   std::string value;
   for (size_t i = 0; i < text.size(); ++i) {
      if (!plain && text[i] == '\\' && i + 1 < text.size()) ++i;
      value += text[i];
   }
   return value;
}

}  // namespace

HostFacts HostFacts::fromKernel(std::string_view nodeName, std::string_view domainName,
                                std::string_view description) {
   HostFacts facts{std::string(nodeName), {}, std::string(description)};
   size_t dot = nodeName.find('.');
   if (dot != std::string_view::npos && dot > 0) {
      facts.hostname = nodeName.substr(0, dot);
      facts.domainName = nodeName.substr(dot + 1);
   } else if (domainName != "(none)") {
      facts.domainName = domainName;
   }
   return facts;
}

std::string HostFacts::systemName(std::string_view osRelease) {
   constexpr std::string_view key = "PRETTY_NAME=";
   while (!osRelease.empty()) {
      size_t end = osRelease.find('\n');
      std::string_view line = osRelease.substr(0, end);
      osRelease.remove_prefix(end == std::string_view::npos ? osRelease.size() : end + 1);
      if (!line.starts_with(key)) continue;
      std::string name = unquoted(line.substr(key.size()));
      if (!name.empty()) return name;
   }
   return "Linux";
}

HostFeeder::HostFeeder(const Rex::Ptr<Statestore::EntityManager>& entityManager)
    : net_(fedEntity<System::NetStatus>(*entityManager, netPath(0).view())),
      mib_(fedEntity<EntityMib::Status>(*entityManager, mibPath)) {}

std::set<std::string> HostFeeder::fedPaths(bool chassis) {
   if (!chassis) return {mibPath, netPath(0).stdString()};
   return {mibPath, netPath(1).stdString(), netPath(2).stdString()};
}

void HostFeeder::factsAre(const HostFacts& facts) {
   net_->hostnameIs(facts.hostname);
   net_->domainNameIs(facts.domainName);
   description_ = facts.description;
   if (active_) mib_->descriptionIs(description_);
}

void HostFeeder::activeIs() {
   active_ = true;
   mib_->descriptionIs(description_);
}

}  // namespace Host
