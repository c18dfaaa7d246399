#include "host/Gateway.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <sys/epoll.h>
#include <sys/socket.h>
#include <unistd.h>

#include "Foreign/Redundancy.h"
#include "Rex/Dir.h"
#include "Rex/Log.h"
#include "Statestore/Cell.h"
#include "host/ApiConfig.h"
#include "host/LinuxTime.h"
#include "host/StartError.h"

namespace Host {
namespace {

constexpr int listener = STDIN_FILENO;
constexpr int command = STDOUT_FILENO;
constexpr int warning = 4;  // of syslog(3)

// What the command does not read is lost.
void tell(const std::string& line) {
   send(command, (line + "\n").data(), line.size() + 1, MSG_NOSIGNAL | MSG_DONTWAIT);
}

void requireListener() {
   int listens = 0;
   socklen_t size = sizeof(listens);
   if (getsockopt(listener, SOL_SOCKET, SO_ACCEPTCONN, &listens, &size) < 0 || !listens) {
      throw StartError("--gateway: standard input is no listening socket; use lldp --store");
   }
   fcntl(listener, F_SETFL, fcntl(listener, F_GETFL) | O_NONBLOCK);
}

}  // namespace

Gateway::Gateway(const Options& options)
    : context_(Rex::make<Rex::Clock>(
          std::make_shared<LinuxTime>(LinuxTime::asOthersKeepIt(options.runDir)))),
      scope_(context_),
      process_(loop_),
      store_(loop_, context_, *options.store),
      manager_(Rex::make<Statestore::EntityManager>()) {
   requireListener();
   context_.logSink = [this](const Rex::LogEvent& event) { handleLog(event); };
   loop_.descriptorIs(command, EPOLLIN | EPOLLRDHUP, [this](uint32_t) { loop_.stop(); });
}

// A person waits for the answer, and will try again if need be.
void Gateway::handleLog(const Rex::LogEvent& event) {
   if (event.severity > warning) return;
   tell(event.text);
   if (!loading_ || store_.isUp()) return;
   fault_ = event.text;
   loop_.stop();
}

bool Gateway::load() {
   bool loaded = store_.load(*manager_);
   loading_ = false;
   if (!loaded && !fault_.empty()) throw StartError(fault_);
   return loaded;
}

int Gateway::cellOfView(const Statestore::EntityManager& manager) {
   auto status = Rex::dynamicPtr<Rex::Dir>(manager.getEntity("l2discovery/lldp/status/local"));
   int view = 0;
   for (int cell : {1, 2}) {
      auto role = Rex::dynamicPtr<Redundancy::RedundancyStatus>(
          manager.getEntity(Cell::path("redundancy/status", cell).view()));
      if (role && role->protocol() == Redundancy::protocolHotStandby &&
          role->mode() == Redundancy::modeActive) {
         return cell;
      }
      if (!view && status && status->entityPtrHas(Rex::format("%d", cell))) view = cell;
   }
   return view ? view : 1;
}

void Gateway::serve() {
   context_.cellId = cellOfView(*manager_);
   intfTables_.emplace(*manager_, IntfTables::Of::others);
   config_.emplace(manager_);
   resources_.resourceIs({std::string(ApiResources::always),
                          {"GET"},
                          {},
                          [this](const ApiRequest&, const ApiTarget&) {
                             Rex::Json words = process_.describe();
                             words["store"] = store_.describe();
                             return ApiAnswer{200, words, {}};
                          }});
   serveConfig(resources_, *config_);
   storeApi_.emplace(resources_, manager_, ApiAccess::besideAgents(manager_), false);
   server_.emplace(loop_, listener, resources_, rate_);
}

void Gateway::run() {
   if (!load()) return;
   serve();
   tell("ready");
   loop_.run(context_);
   server_.reset();
   loop_.descriptorDel(command);
   process_.forgetSignals();
   if (store_.flush()) tell("taken");
}

}  // namespace Host
