// What the fuzz targets of the management API serve: a store with the operator's entities.
#pragma once

#include <string>

#include "Rex/Context.h"
#include "Rex/Dir.h"
#include "host/ApiConfig.h"
#include "host/ApiEntities.h"
#include "host/Settings.h"
#include "model/CliConfig.h"

namespace Fuzz {

struct ApiStore {
   ApiStore() {
      config.cliPortConfigIs(Wirekit::IntfId("Ethernet1"));
      auto provider = Rex::make<Lldp::ExternalTlvConfig>();
      provider->externalTlvPortConfigIs(Wirekit::IntfId("Ethernet1"));
      tlvs.entityPtrIs("a", provider);
      entities.serveIn(resources);
      Host::serveConfig(resources, operatorConfig, file);
   }

   std::string everything() const {
      std::string all;
      for (const Rex::Entity* one :
           {static_cast<Rex::Entity*>(&config), static_cast<Rex::Entity*>(&clear),
            static_cast<Rex::Entity*>(&tlvs)}) {
         all += entityToJson(*one).dump(-1, ' ', true, Rex::Json::error_handler_t::replace);
      }
      return all;
   }
   // Whatever came in, every setting keeps to its range; throws where one does not.
   void checkSettings() const {
      Host::checkRanges(config.entityType(), entityToJson(config));
      for (auto [intfId, row] : config.cliPortConfig()) {
         Host::checkRanges(row->entityType(), entityToJson(*row));
      }
      Host::checkRanges(clear.entityType(), entityToJson(clear));
   }

 private:
   template <class T>
   T& at(const char* path) {
      return static_cast<T&>(*manager->entityIs(path, T::staticType().name()));
   }

   Rex::Context context{Rex::make<Rex::Clock>(std::make_shared<Rex::ManualTime>())};
   Rex::ContextScope scope{context};
   Rex::Ptr<Statestore::EntityManager> manager = Rex::make<Statestore::EntityManager>();
   Lldp::CliConfig& config = at<Lldp::CliConfig>("l2discovery/lldp/cliConfig");
   Lldp::RemTablesCliConfig& clear =
       at<Lldp::RemTablesCliConfig>("l2discovery/lldp/remTablesCliConfig");
   Rex::Dir& tlvs = at<Rex::Dir>("l2discovery/lldp/externalTlvs");
   Host::OperatorConfig operatorConfig{manager};
   Host::ConfigFile file{"/dev/null/no/such/file", false};  // every save is refused
   Host::ApiEntities entities{manager, Host::ApiAccess(manager, {})};

 public:
   Host::ApiResources resources;
};

}  // namespace Fuzz
