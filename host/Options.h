// The command line of lldp-agentd.
#pragma once

#include <sys/types.h>

#include <map>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "Redis/StoreUrl.h"
#include "Wirekit/IntfId.h"
#include "host/Role.h"
#include "host/TraceLevels.h"

namespace Host {

struct Options {
   std::set<std::string> devices;                 // none: every physical one
   std::map<std::string, Wirekit::IntfId> ports;  // the operator's port names, by device
   int cell = 1;
   std::optional<Role> redundancy;  // where the store knows of none
   std::string socket = "/run/lldp-agentd/api.sock";
   std::optional<gid_t> writeGroup;  // of `socket`; none: the process's own
   std::string readSocket;           // empty: there is none
   std::optional<gid_t> readGroup;   // there is one exactly if there is a socket for reading
   std::string runDir = "/run/lldp-agentd";
   std::string stateDir = "/var/lib/lldp-agentd";
   std::optional<std::string> config;     // file of the operator's configuration; none: stateDir's
   std::optional<Redis::StoreUrl> store;  // shared with other processes; none: the embedded one
   bool gateway = false;                  // serve that store alone, for a command
   std::vector<TraceSetting> trace;
   std::set<std::string> feeders;  // those that run, see Feeders::all()
   std::string module;             // empty: the one that belongs to the program

   bool feeds(const std::string& feeder) const { return feeders.contains(feeder); }
   // The devices to serve, those that got a name among them; none: every physical one.
   std::set<std::string> served() const;

   // Nothing when the arguments only asked for help, which then has been printed. Throws
   // StartError.
   static std::optional<Options> parse(int argc, const char* const* argv);
};

}  // namespace Host
