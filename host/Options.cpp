#include "host/Options.h"

#include <grp.h>

#include <CLI/CLI.hpp>
#include <cstdlib>
#include <filesystem>
#include <iostream>

#include "Rex/Printable.h"
#include "host/Feeders/Feeders.h"
#include "host/File.h"
#include "host/PortNames.h"
#include "host/StartError.h"

namespace Host {
namespace {

constexpr const char* purpose =
    "The LLDP agent of a switch (IEEE Std 802.1AB): tells the neighbours on its ports who it is, "
    "and learns who they are.\n\n"
    "Runs in the foreground until SIGTERM or SIGINT, and tells systemd when it is ready. Needs the "
    "right to open packet sockets (CAP_NET_RAW); run it as root or as a service that has it.";

constexpr const char* examples = R"(
Examples:
  lldp-agentd
      serves every physical device; they become Ethernet1, Ethernet2, ...
  lldp-agentd --port Ethernet1=eth0 --port Management1=eth1
      serves these two, under these names
  lldp-agentd --trace LldpProtocol=0,4,6 eth0
      serves one device, and writes to standard error what its frames hold

While it runs:
  lldp show neighbors
  curl --unix-socket /run/lldp-agentd/api.sock http://switch/v1/paths
  curl --unix-socket /run/lldp-agentd/api.sock -X PATCH -d '{"messageTxInterval": 5}' \
      http://switch/v1/entity/l2discovery/lldp/cliConfig
)";

const std::map<std::string, Role> roles{{"active", Role::active}, {"standby", Role::standby}};

[[noreturn]] void refuse(const char* option, const std::string& value, const std::string& words) {
   throw StartError(std::string(option) + " " + Rex::printable(value) + ": " + words);
}

void takePort(Options& options, const std::string& text) {
   size_t equals = text.find('=');
   if (equals == std::string::npos || equals == 0 || equals + 1 == text.size()) {
      refuse("--port", text, "expected NAME=DEVICE, such as Ethernet1=eth0");
   }
   std::string name = text.substr(0, equals);
   std::string device = text.substr(equals + 1);
   if (!PortNames::isPortName(name)) {
      refuse("--port", text, "expected a port name such as Ethernet1, Ethernet3/1 or Management1");
   }
   Wirekit::IntfId intfId(name);
   for (const auto& [other, taken] : options.ports) {
      if (taken == intfId) refuse("--port", text, "the name is given to " + other + " already");
   }
   if (!options.ports.emplace(device, intfId).second) {
      refuse("--port", text, "the device has a name already");
   }
}

std::set<std::string> feedersOf(const std::string& text) {
   const std::set<std::string> all = Feeders::all();
   if (text == "all") return all;
   std::set<std::string> chosen;
   if (text == "none") return chosen;
   std::istringstream in(text);
   std::string one;
   while (std::getline(in, one, ',')) {
      if (!all.contains(one)) {
         refuse("--feeders", text, "expected all, none, or some of links,host,bridging,addresses");
      }
      chosen.insert(one);
   }
   if (chosen.empty()) refuse("--feeders", text, "expected all, none, or a list");
   return chosen;
}

std::optional<gid_t> groupOf(const char* option, const std::string& name) {
   if (name.empty()) return std::nullopt;
   const group* found = getgrnam(name.c_str());
   if (!found) refuse(option, name, "there is no group of that name");
   return found->gr_gid;
}

// The operator's socket and the one for reading.
void takeSockets(Options& options, const std::string& readGroup, const std::string& writeGroup) {
   options.writeGroup = groupOf("--write-group", writeGroup);
   options.readGroup = groupOf("--read-group", readGroup);
   std::string& path = options.readSocket;
   if (!options.readGroup) {
      if (!path.empty()) refuse("--read-socket", path, "for whom? It needs --read-group");
      return;
   }
   if (path.empty()) path = std::filesystem::path(options.socket).replace_filename("read.sock");
   if (path == options.socket) refuse("--read-socket", path, "that is the socket of --socket");
}

void takeTrace(Options& options, const std::string& text) {
   try {
      options.trace.push_back(parseTrace(text));
   } catch (const std::invalid_argument& error) {
      throw StartError(std::string("--trace: ") + error.what());
   }
}

// Where the store is, and the password for it.
void takeStore(Options& options, const std::optional<std::string>& url,
               const std::string& passwordFile) {
   constexpr const char* fileOption = "--store-password-file";
   if (!url) {
      if (!passwordFile.empty())
         refuse(fileOption, passwordFile, "of which store? It needs --store");
      return;
   }
   try {
      options.store = Redis::StoreUrl::parse(*url);
   } catch (const Redis::StoreUrlError& error) {
      // Without the URL, which may hold a password.
      throw StartError(std::string("--store: ") + error.what());
   }
   if (passwordFile.empty()) return;
   constexpr size_t longestFile = 4096;
   auto content = readWhole(passwordFile, longestFile);
   if (!content) refuse(fileOption, passwordFile, "there is no such file");
   try {
      options.store->passwordIs(*content);
   } catch (const Redis::StoreUrlError& error) {
      refuse(fileOption, passwordFile, error.what());
   }
}

void checkFeeders(const Options& options) {
   if (!options.feeds("links") && !options.served().empty()) {
      throw StartError("--feeders: devices and --port need the feeder links");
   }
   if (!options.feeds("links") && options.feeds("addresses")) {
      throw StartError("--feeders: addresses need the feeder links, which names their interfaces");
   }
}

// The command line as it was written; what its texts mean is found out afterwards.
struct Words {
   std::vector<std::string> ports;
   std::vector<std::string> traces;
   std::vector<std::string> devices;
   std::string config;
   std::string redundancy;
   std::string feeders = "all";
   std::string readGroup;
   std::string writeGroup;
   std::string store;
   std::string storePasswordFile;
};

void declare(CLI::App& app, Options& options, Words& words) {
   app.footer(examples);
   // An option that is given twice counts as it is given last.
   auto once = [&app](const char* name, const char* form, auto& value, const char* help) {
      return app.add_option(name, value, help)
          ->multi_option_policy(CLI::MultiOptionPolicy::TakeLast)
          ->capture_default_str()
          ->type_name(form);
   };
   auto often = [&app](const char* name, const char* form, auto& values, const char* help) {
      app.add_option(name, values, help)->allow_extra_args(false)->type_name(form);
   };
   app.add_option("DEVICE", words.devices,
                  "Device to serve, beside those of --port. Without any: every physical device "
                  "and every veth");
   often("--port", "NAME=DEVICE", words.ports,
         "The switch's name of a device, such as Ethernet1=eth0. Other devices keep a name that is "
         "a port name already, or get the next free Ethernet<n>, for good (see --state-dir)");
   once("--cell", "NUMBER", options.cell, "Number of this supervisor")->check(CLI::Range(1, 2));
   once("--redundancy", "ROLE", words.redundancy,
        "active or standby: the role of this supervisor beside another one, where the platform "
        "has not said it yet")
       ->check(CLI::IsMember(roles));
   once("--socket", "PATH", options.socket,
        "Socket of the management API; its owner and group may use it");
   once("--write-group", "GROUP", words.writeGroup,
        "Group of that socket, which may read and change everything (default: the process's own)");
   once("--read-group", "GROUP", words.readGroup,
        "Group that may read, through a socket of its own; without it there is none");
   once("--read-socket", "PATH", options.readSocket,
        "That socket (default: read.sock in the folder of --socket)");
   once("--run-dir", "DIR", options.runDir,
        "Folder of what lives until the next boot: time anchor, ring trace");
   once("--state-dir", "DIR", options.stateDir,
        "Folder of what is kept across boots: the ports' names, the configuration");
   once("--config", "FILE", words.config,
        "File of the operator's configuration, which has to exist (default: config.json in the "
        "folder of --state-dir, which may be missing). Lldp.json beside it turns feature toggles");
   once("--store", "URL", words.store,
        "State store to share with other processes, a Redis server: "
        "redis://[[user]:password@]host[:port][/database] or unix:/path[?database=N] (default: "
        "none, the state is the process's own)");
   once("--store-password-file", "FILE", words.storePasswordFile,
        "File whose first line is the password of that server, which then nobody sees in a list of "
        "processes");
   app.add_flag("--gateway", options.gateway)->group("");  // hidden: `lldp --store` gives it
   often("--trace", "FACILITY=LEVELS", words.traces,
         "Traces to standard error: levels 0 to 9 with commas between, or all");
   once("--feeders", "LIST", words.feeders,
        "all, none, or a list of links,host,bridging,addresses: what is read from Linux. What is "
        "not, other agents or the API write");
   once("--module", "PATH", options.module,
        "The agent (default: liblldpagent.so of the program's folder or of ../lib)");
}

// A command that starts a gateway tells it the URL, which may hold a password, where no list of
// processes shows it.
std::optional<std::string> storeUrl(const CLI::App& app, bool gateway) {
   const CLI::Option* option = app.get_option("--store");
   if (option->count()) return option->as<std::string>();
   const char* url = gateway ? getenv("LLDP_STORE") : nullptr;
   return url ? std::optional<std::string>(url) : std::nullopt;
}

}  // namespace

std::set<std::string> Options::served() const {
   std::set<std::string> all = devices;
   for (const auto& [device, name] : ports) all.insert(device);
   return all;
}

std::optional<Options> Options::parse(int argc, const char* const* argv) {
   Options options;
   Words words;
   CLI::App app(purpose, "lldp-agentd");
   declare(app, options, words);
   try {
      app.parse(argc, argv);
   } catch (const CLI::CallForHelp&) {
      std::cout << app.help();
      return std::nullopt;
   } catch (const CLI::ArgumentMismatch& error) {
      std::string said = error.what();
      throw StartError(said.substr(0, said.find(':')) + " needs a value; see lldp-agentd --help");
   } catch (const CLI::ParseError& error) {
      throw StartError(Rex::printable(error.what()) + "; see lldp-agentd --help");
   }
   for (const std::string& port : words.ports) takePort(options, port);
   for (const std::string& trace : words.traces) takeTrace(options, trace);
   takeSockets(options, words.readGroup, words.writeGroup);
   if (!words.redundancy.empty()) options.redundancy = roles.at(words.redundancy);
   if (app.count("--config")) options.config = words.config;
   takeStore(options, storeUrl(app, options.gateway), words.storePasswordFile);
   if (options.gateway && !options.store) {
      throw StartError("--gateway: to which store? It needs --store");
   }
   options.feeders = feedersOf(words.feeders);
   options.devices = {words.devices.begin(), words.devices.end()};
   checkFeeders(options);
   return options;
}

}  // namespace Host
