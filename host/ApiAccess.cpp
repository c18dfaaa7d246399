#include "host/ApiAccess.h"

#include "Rex/System.h"
#include "host/Feeders/Feeders.h"
#include "host/KnownPaths.h"
#include "model/CliConfig.h"

namespace Host {

ApiAccess ApiAccess::besideAgents(Rex::Ptr<Statestore::EntityManager> entityManager) {
   ApiAccess access(std::move(entityManager), Feeders::fedPaths(Feeders::all(), true));
   for (const KnownPath& known : knownPaths()) {
      if (known.agents) access.agents_.insert(known.path);
   }
   return access;
}

std::string ApiAccess::refusal(const std::string& root) const {
   bool own = entityManager_->mountFlags(root).find('w') != std::string::npos;
   if (own || agents_.contains(root)) {
      return "'" + root + "' is written by the agent and cannot be changed here";
   }
   if (fed_.contains(root)) {
      return "'" + root + "' is written by a feeder and cannot be changed here (see --feeders)";
   }
   return {};
}

std::string_view ApiAccess::entryType(std::string_view root) {
   if (root == "l2discovery/lldp/externalTlvs") {
      return Lldp::ExternalTlvConfig::staticType().name();
   }
   return {};
}

bool ApiAccess::isReplacedAsWhole(const Rex::EntityType& type) {
   return &type == &Lldp::ExternalTlvPortConfig::staticType();
}

void ApiAccess::stamp(const Rex::EntityType& type, Rex::Json& attributes) {
   if (&type != &Lldp::RemTablesCliConfig::staticType() || !attributes.is_object()) return;
   auto request = attributes.find("remTablesClearRequest");
   if (request == attributes.end() || !request->is_object()) return;
   // An infinite time, which null would be, could never be followed by another request.
   Rex::Json& time = (*request)["requestTime"];
   double now = Rex::System::currentTime();
   if (time.is_null()) time = now;
   if (time.is_number() && time.get<double>() > now) {
      Rex::expected(time, "remTablesClearRequest.requestTime",
                    "at most the present time, " + Rex::Json(now).dump());
   }
}

}  // namespace Host
