// The entities of the store as resources: read any, change the operator's. Generic over the
// description of the types; nothing here knows an entity.
//
//   /v1/entity/<path>   an entity, one of its attributes or collections
//   /v1/changes         several changes of entities, all or none
//   /v1/paths           the paths of the store
#pragma once

#include <string>

#include "Rex/EntityType.h"
#include "Statestore/EntityManager.h"
#include "host/ApiAccess.h"
#include "host/ApiResources.h"

namespace Host {

class ApiEntities {
 public:
   ApiEntities(Rex::Ptr<Statestore::EntityManager> entityManager, ApiAccess access)
       : entityManager_(std::move(entityManager)), access_(std::move(access)) {}

   // Serves them in `resources`, which this has to outlive.
   void serveIn(ApiResources& resources);

 private:
   // Every path of the store, with its type and whether it can be changed.
   Rex::Json paths() const;

   // Throw ApiError, and then nothing has changed.
   ApiAnswer get(const Statestore::Steps& steps, const ApiTarget& target) const;
   ApiAnswer change(const ApiRequest& request, const ApiTarget& target);
   ApiAnswer changeAll(const ApiRequest& request);

   const Rex::Ptr<Statestore::EntityManager> entityManager_;
   const ApiAccess access_;
};

}  // namespace Host
