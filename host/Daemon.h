// The process: loads the agent, gives it time, a store that is filled from Linux and packet access,
// and serves the management API, until it is told to stop.
#pragma once

#include <memory>
#include <optional>

#include "Interface/LinuxPamMaker.h"
#include "Rex/Context.h"
#include "Rex/Loop.h"
#include "Rex/Owned.h"
#include "host/ApiServer.h"
#include "host/ConfigFile.h"
#include "host/Feeders/Feeders.h"
#include "host/Module.h"
#include "host/Options.h"
#include "host/PowerFallback.h"
#include "host/Process.h"
#include "host/Redundancy.h"
#include "host/SharedStore.h"
#include "host/StoreApi.h"

namespace Host {

class Daemon {
 public:
   // Makes all that the agent needs. Throws StartError.
   explicit Daemon(const Options& options);
   ~Daemon();

   // Starts the agent; with a shared state store when that has been read, however late. False when
   // the process was told to stop before. Throws StartError, and std::system_error when the agent
   // cannot have its files.
   bool start();
   // Runs until SIGTERM or SIGINT, then stops in order and returns nothing. Where the agent cannot
   // take up a role that it is given, it returns that role, and the process has to begin anew at
   // once: the agent stands still, and what it wrote stays for the supervisor that is active now.
   std::optional<Role> run();

 private:
   void checkPlatform() const;
   bool waitForStore();
   void loadConfig();
   void startRedundancy();
   void startFeeders();
   void guardStore();
   void activeIs();
   void openApi();
   void serveAll();
   void stopApi();
   void handleReady();
   Rex::Json describe() const;

   // What is made first is needed longest.
   const Options options_;
   Rex::Loop loop_;
   Rex::Context context_;
   Rex::ContextScope scope_;
   Process process_;
   std::optional<ApiSocket> socket_;
   std::optional<ApiSocket> readSocket_;
   std::shared_ptr<Interface::LinuxPamMaker> pamMaker_;
   std::optional<SharedStore> store_;
   std::optional<Module> module_;
   AgentBase::CAgent::Ptr agent_;
   std::optional<OperatorConfig> config_;
   std::optional<ConfigFile> configFile_;
   std::optional<PortNames> names_;
   std::optional<Feeders> feeders_;
   Rex::OwnedMachine<PowerFallback> powerFallback_;
   Rex::OwnedMachine<RedundancySm> redundancySm_;
   std::optional<Role> restartAs_;
   std::optional<StoreApi> storeApi_;
   ApiResources resources_;
   ApiRequestRate rate_;
   std::optional<ApiServer> server_;
   std::optional<ApiServer> readServer_;
   Rex::Timer ready_;
   int turns_ = 0;
};

}  // namespace Host
