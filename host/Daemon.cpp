#include "host/Daemon.h"

#include <sys/socket.h>
#include <systemd/sd-daemon.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <filesystem>

#include "Foreign/Toggle.h"
#include "Rex/Dispatcher.h"
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

}  // namespace

Daemon::Daemon(const Options& options)
    : options_(options),
      context_(makeClock(options)),
      scope_(context_),
      process_(loop_),
      ready_(context_.clock()) {
   context_.cellId = options_.cell;
   context_.runDir = options_.runDir;
   context_.service<ToggleFolder>().path =
       options_.config ? std::filesystem::absolute(*options_.config).parent_path().string()
                       : options_.stateDir;
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
   if (options_.store) store_.emplace(loop_, context_, *options_.store);
   agent_ = module_->makeAgent("Lldp");
   openApi();
}

Daemon::~Daemon() {
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

// Whoever asks meanwhile is told what the agent waits for.
bool Daemon::waitForStore() {
   const std::string words = "waiting for the state store at " + options_.store->text();
   resources_.refusalIs("the agent is " + words + "; its log tells why");
   sd_notify(0, ("READY=1\nSTATUS=" + words).c_str());
   bool loaded = store_->load(*agent_->entityManager());
   resources_.refusalIs({});
   return loaded;
}

// Before the agent asks for its mounts, at whose end it looks at its role.
void Daemon::startRedundancy() {
   auto& manager = *agent_->entityManager();
   auto restart = [this](Role role) {
      if (store_) store_->freeze();
      restartAs_ = role;
      loop_.stop();
   };
   redundancySm_.make(
       redundancyIn(manager, options_.redundancy), lldpStatusDirIn(manager),
       RedundancySm::Reactions{[this] { guardStore(); }, [this] { activeIs(); }, restart});
}

// The agent finds the operator's entities at its mounts, filled. What a shared store holds of them
// counts; the active supervisor's file is for a store in which nothing is configured.
void Daemon::loadConfig() {
   config_.emplace(agent_->entityManager());
   configFile_.emplace(options_.config.value_or(options_.stateDir + "/config.json"),
                       options_.config.has_value());
   if (store_ && (!redundancySm_.get()->isActive() || !config_->differences().empty())) return;
   configFile_->load(*config_);
}

void Daemon::startFeeders() {
   names_.emplace(options_.ports, options_.stateDir + "/ports.json");
   feeders_.emplace(Feeders::Setup{agent_->entityManager(), loop_, *names_, options_.feeders,
                                   options_.served(), options_.devices.empty(),
                                   store_.has_value()});
   bool active = redundancySm_.get()->isActive();
   feeders_->start(active);
   if (active) activeIs();
}

void Daemon::guardStore() {
   if (store_) store_->guardIs(writeGuard(*agent_->redundancyStatus()));
}

void Daemon::activeIs() {
   guardStore();
   feeders_->activeIs();
   if (powerFallback_.get()) return;
   auto& manager = *agent_->entityManager();
   powerFallback_.make(fedEntity<Lldp::Config>(manager, "l2discovery/lldp/config"),
                       fedEntity<Lldp::CliConfig>(manager, "l2discovery/lldp/cliConfig"));
}

void Daemon::openApi() {
   resources_.resourceIs({std::string(ApiResources::always),
                          {"GET"},
                          {},
                          [this](const ApiRequest&, const ApiTarget&) {
                             return ApiAnswer{200, describe(), {}};
                          }});
   resources_.writeSocketIs(options_.socket);
   server_.emplace(loop_, socket_->fd(), resources_, rate_);
   if (readSocket_) {
      readServer_.emplace(loop_, readSocket_->fd(), resources_, rate_, ApiLimits(), false);
   }
}

void Daemon::serveAll() {
   const auto& manager = agent_->entityManager();
   storeApi_.emplace(resources_, manager, ApiAccess(manager, feeders_->fedPaths()));
   resources_.resourceIs(traceResource());
   serveConfig(resources_, *config_, *configFile_);
}

// Ends the streams too, whose machines watch what the agent is about to take away.
void Daemon::stopApi() {
   readServer_.reset();
   server_.reset();
}

bool Daemon::start() {
   if (store_ && !waitForStore()) return false;
   startRedundancy();
   loadConfig();
   startFeeders();
   serveAll();
   Rex::Dispatcher::run([this] { agent_->doInit(); });
   ready_.handlerIs(nullptr, [this] { handleReady(); });
   ready_.timeMinIs(0);
   return true;
}

std::optional<Role> Daemon::run() {
   loop_.run(context_);
   if (restartAs_) {
      sd_notify(0, "STATUS=beginning anew in another role");
      stopApi();
      if (store_) store_->flush();
      // The sockets' files and locks, which the next to come wants.
      readSocket_.reset();
      socket_.reset();
      return restartAs_;
   }
   sd_notify(0, "STOPPING=1");
   stopApi();
   // As one handler, so that what still watches is told when all of it is over.
   Rex::Dispatcher::run([this] { module_->cleanUp(*agent_); });
   if (store_) {
      process_.forgetSignals();
      store_->flush();
   }
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
   if (feeders_) {
      for (const auto& [port, device] : feeders_->ports()) {
         ports[port.stringValue().stdString()] = {{"device", device}};
      }
   }
   Rex::Json agent = process_.describe();
   agent["packets"] = {{"kernelDrops", pamMaker_->kernelDrops()}};
   agent["ports"] = ports;
   agent["trace"] = traceToJson();
   if (store_) agent["store"] = store_->describe();
   return agent;
}

}  // namespace Host
