// The agent as the commands see it: its entities by path, ports in their natural order.
#pragma once

#include <functional>
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
   explicit Agent(Session& session);

   Client& client() { return client_; }

   // Seconds on the agent's clock, which its entities' times stand on, when it was asked last.
   double now() const { return now_; }
   // The number of its supervisor; of a state store, of the active one.
   int cell() const { return cell_; }

   // Returns when `done` says that the agent has carried out what it was asked for. It has at once,
   // but for one that is asked through a state store. Throws Failure when it takes too long.
   void await(const std::function<bool()>& done);

   // An entity by its path. `levels` of what it owns come with it, and of what is deeper only that
   // it is there.
   Json entity(const std::string& path, int levels);
   // The same without what it owns; nothing when it does not stand.
   std::optional<Json> findEntity(const std::string& path);
   // The members of one of its collections, by port. They are read one by one, so that no answer
   // grows with the number of ports.
   Ports ports(const std::string& path, std::string_view collection);
   // From the members of a collection that has been read: all, or the one of `port`. Throws Failure
   // that says which ports there are when there is no such port.
   static Ports portsIn(const Json& members, const std::optional<std::string>& port);
   std::optional<Json> findPort(const std::string& path, std::string_view collection,
                                std::string_view port, const std::string& query = "");

   // What was learned on the ports of both supervisors. The active one keeps a table of both; what
   // is not in that, where nobody keeps it, is this supervisor's own.
   //
   // Of all ports on which LLDP is spoken, in their order.
   std::vector<std::string> portNames();
   // The status of all ports, or of `port`; without the neighbors' words, if those are not wanted.
   // Throws Failure as portsIn() does.
   Ports portStatuses(const std::optional<std::string>& port, bool withNeighbors = true);
   std::optional<Json> findPortStatus(const std::string& port, bool withNeighbors = true);
   // Counters and times of the whole.
   Json table();

 private:
   Client client_;
   const Patience patience_;
   const bool elsewhere_;  // what it is asked for comes to it through a state store
   double now_ = 0;
   int cell_ = 0;
   std::string ownStatus_;  // path of what this supervisor has learned
};

}  // namespace LldpCli
