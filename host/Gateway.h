// The management API of a shared state store without an agent, for one `lldp --store` and as long
// as that lives. Needs no rights and writes no file.
//
// Standard input is a listening socket of the command's, and standard output a socket that both
// share: a line "ready" when the store has been read, "taken" at the end when all that was changed
// is in it, and whatever else is to be said. The command's end of it is the gateway's.
#pragma once

#include <optional>
#include <string>

#include "Rex/Context.h"
#include "Rex/Loop.h"
#include "host/ApiServer.h"
#include "host/Feeders/IntfTables.h"
#include "host/OperatorConfig.h"
#include "host/Options.h"
#include "host/Process.h"
#include "host/SharedStore.h"
#include "host/StoreApi.h"

namespace Host {

class Gateway {
 public:
   // Begins to connect. Throws StartError.
   explicit Gateway(const Options& options);

   // Serves until the command ends. Throws StartError when the store cannot be reached.
   void run();

   // The supervisor whose view is shown: the active one, else one that has an agent.
   static int cellOfView(const Statestore::EntityManager& manager);

 private:
   bool load();
   void serve();
   void handleLog(const Rex::LogEvent& event);

   Rex::Loop loop_;
   Rex::Context context_;
   Rex::ContextScope scope_;
   Process process_;
   SharedStore store_;
   const Rex::Ptr<Statestore::EntityManager> manager_;
   std::optional<IntfTables> intfTables_;
   std::optional<OperatorConfig> config_;
   std::optional<StoreApi> storeApi_;
   ApiResources resources_;
   ApiRequestRate rate_;
   std::optional<ApiServer> server_;
   bool loading_ = true;
   std::string fault_;  // why the store is not to be had
};

}  // namespace Host
