// The agent as the commands see it: its entities by path, ports in their natural order.
#pragma once

#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "cli/Client.h"
#include "cli/Session.h"

namespace LldpCli {

// Numbers in a name count by value: Ethernet2 before Ethernet10.
struct PortOrder {
   bool operator()(const std::string& a, const std::string& b) const;
};
using Ports = std::map<std::string, Json, PortOrder>;

class Agent {
 public:
   explicit Agent(const Session& session);

   Client& client() { return client_; }

   // Seconds on the agent's clock, which its entities' times stand on, when it was asked last.
   double now() const { return now_; }
   // Path of what this agent's cell has learned.
   const std::string& statusPath() const { return statusPath_; }

   // An entity by its path. `levels` of what it owns come with it, and of what is deeper only that
   // it is there.
   Json entity(const std::string& path, int levels);
   // The members of one of its collections, by port: all, or the one of `port`. They are read one
   // by one, so that no answer grows with the number of ports. Throws Failure that says which
   // ports there are when there is no such port.
   Ports ports(const std::string& path, std::string_view collection,
               const std::optional<std::string>& port);
   // Likewise from the members of a collection that has been read.
   static Ports portsIn(const Json& members, const std::optional<std::string>& port);
   // Of all ports on which the agent speaks, in their order.
   std::vector<std::string> portNames();
   std::optional<Json> findPort(const std::string& path, std::string_view collection,
                                std::string_view port);

 private:
   Client client_;
   double now_ = 0;
   std::string statusPath_;
};

}  // namespace LldpCli
