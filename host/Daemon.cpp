#include "host/Daemon.h"

#include <signal.h>
#include <sys/epoll.h>
#include <sys/signalfd.h>
#include <sys/socket.h>
#include <systemd/sd-daemon.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <filesystem>

#include "Foreign/Toggle.h"
#include "Rex/Dispatcher.h"
#include "Rex/System.h"
#include "host/ApiConfig.h"
#include "host/Feeders/FedEntity.h"
#include "host/File.h"
#include "host/LinuxTime.h"
#include "host/Outlets.h"
#include "host/StartError.h"
#include "host/TraceLevels.h"

namespace Host {
namespace {

// The folders have to be there before the clock, which keeps its anchor in one of them.
Rex::Ptr<Rex::Clock> makeClock(const Options& options) {
   writableFolder(options.runDir, "the run-time folder");
   writableFolder(options.stateDir, "the state folder");
   return Rex::make<Rex::Clock>(std::make_shared<LinuxTime>(options.runDir));
}

sigset_t stopSignals() {
   sigset_t set;
   sigemptyset(&set);
   sigaddset(&set, SIGTERM);
   sigaddset(&set, SIGINT);
   return set;
}

}  // namespace

Daemon::Daemon(const Options& options)
    : options_(options),
      context_(makeClock(options)),
      scope_(context_),
      ready_(context_.clock()),
      startTime_(Rex::System::currentTime()) {
   context_.cellId = options_.cell;
   context_.runDir = options_.runDir;
   context_.service<ToggleFolder>().path =
       options_.config ? std::filesystem::absolute(*options_.config).parent_path().string()
                       : options_.stateDir;
   watchSignals();
   outletsIs(context_);
   module_.emplace(options_.module);
   for (const TraceSetting& setting : options_.trace) {
      try {
         traceIs(setting);
      } catch (const std::invalid_argument& error) {
         throw StartError(std::string("--trace: ") + error.what());
      }
   }
   socket_.emplace(options_.socket, options_.writeGroup);
   if (options_.readGroup) readSocket_.emplace(options_.readSocket, options_.readGroup);
   checkPlatform();
   pamMaker_ = std::make_shared<Interface::LinuxPamMaker>(loop_);
   context_.serviceIs<Interface::PamMaker>(pamMaker_);
   agent_ = module_->makeAgent("Lldp");
   startRedundancy();
   loadConfig();
   startFeeders();
   startApi();
}

Daemon::~Daemon() {
   if (signals_ >= 0) close(signals_);
   // Its machines hold packet access objects, which the maker has to outlive.
   stopApi();
   agent_ = nullptr;
}

// Without packet sockets nothing would work, and everything would look well.
void Daemon::checkPlatform() const {
   int fd = socket(AF_PACKET, SOCK_RAW | SOCK_CLOEXEC, 0);
   if (fd < 0) {
      throw StartError(std::string("packet sockets cannot be opened: ") + std::strerror(errno) +
                       (errno == EPERM ? "; CAP_NET_RAW is needed, run as root" : ""));
   }
   close(fd);
}

// Before the agent asks for its mounts, at whose end it looks at its role.
void Daemon::startRedundancy() {
   auto& manager = *agent_->entityManager();
   auto restart = [this](Role role) {
      restartAs_ = role;
      loop_.stop();
   };
   redundancySm_.make(redundancyIn(manager, options_.redundancy),
                      fedEntity<Rex::Dir>(manager, "l2discovery/lldp/status/local"),
                      RedundancySm::Reactions{[this] { feeders_->activeIs(); }, restart});
}

// The agent finds the operator's entities at its mounts, filled.
void Daemon::loadConfig() {
   config_.emplace(agent_->entityManager());
   configFile_.emplace(options_.config.value_or(options_.stateDir + "/config.json"),
                       options_.config.has_value());
   configFile_->load(*config_);
}

void Daemon::startFeeders() {
   names_.emplace(options_.ports, options_.stateDir + "/ports.json");
   feeders_.emplace(Feeders::Setup{agent_->entityManager(), loop_, *names_, options_.feeders,
                                   options_.served(), options_.devices.empty()});
   feeders_->start(redundancySm_.get()->isActive());
   auto& manager = *agent_->entityManager();
   powerFallback_.make(fedEntity<Lldp::Config>(manager, "l2discovery/lldp/config"),
                       fedEntity<Lldp::CliConfig>(manager, "l2discovery/lldp/cliConfig"));
}

void Daemon::startApi() {
   const auto& manager = agent_->entityManager();
   entities_.emplace(manager, ApiAccess(manager, feeders_->fedPaths()));
   entities_->serveIn(resources_);
   resources_.resourceIs({"/v1/agent", {"GET"}, {}, [this](const ApiRequest&, const ApiTarget&) {
                             return ApiAnswer{200, describe(), {}};
                          }});
   resources_.resourceIs(traceResource());
   serveConfig(resources_, *config_, *configFile_);
   events_.emplace(manager);
   events_->serveIn(resources_);
   streams_.emplace(manager);
   streams_->serveIn(resources_);
   resources_.writeSocketIs(options_.socket);
   server_.emplace(loop_, socket_->fd(), resources_, rate_);
   if (readSocket_) {
      readServer_.emplace(loop_, readSocket_->fd(), resources_, rate_, ApiLimits(), false);
   }
}

// Ends the streams too, whose machines watch what the agent is about to take away.
void Daemon::stopApi() {
   readServer_.reset();
   server_.reset();
}

void Daemon::watchSignals() {
   sigset_t set = stopSignals();
   sigprocmask(SIG_BLOCK, &set, nullptr);
   // Whoever reads our standard error may go away before us.
   signal(SIGPIPE, SIG_IGN);
   signals_ = signalfd(-1, &set, SFD_CLOEXEC | SFD_NONBLOCK);
   if (signals_ < 0) throw StartError(std::string("signalfd: ") + std::strerror(errno));
   loop_.descriptorIs(signals_, EPOLLIN, [this](uint32_t) { loop_.stop(); });
}

void Daemon::start() {
   Rex::Dispatcher::run([this] { agent_->doInit(); });
   ready_.handlerIs(nullptr, [this] { handleReady(); });
   ready_.timeMinIs(0);
}

std::optional<Role> Daemon::run() {
   loop_.run(context_);
   if (restartAs_) {
      sd_notify(0, "STATUS=beginning anew in another role");
      stopApi();
      // The sockets' files and locks, which the next to come wants.
      readSocket_.reset();
      socket_.reset();
      return restartAs_;
   }
   sd_notify(0, "STOPPING=1");
   stopApi();
   // As one handler, so that what still watches is told when all of it is over.
   Rex::Dispatcher::run([this] { module_->cleanUp(*agent_); });
   return std::nullopt;
}

// The mounts end in the first pass of the timers, and in the second the ports are opened.
void Daemon::handleReady() {
   if (++turns_ <= 2) {
      ready_.timeMinIs(0);
      return;
   }
   sd_notify(0, "READY=1\nSTATUS=serving");
}

Rex::Json Daemon::describe() const {
   Rex::Json ports = Rex::Json::object();
   for (const auto& [port, device] : feeders_->ports()) {
      ports[port.stringValue().stdString()] = {{"device", device}};
   }
   return {{"pid", getpid()},
           {"cell", context_.cellId},
           {"time", Rex::System::currentTime()},
           {"startTime", startTime_},
           {"wakeups", loop_.wakeups()},
           {"packets", {{"kernelDrops", pamMaker_->kernelDrops()}}},
           {"ports", ports},
           {"trace", traceToJson()}};
}

}  // namespace Host
