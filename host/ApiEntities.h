// The entities of the store as resources: read any, change the operator's. Generic over the
// description of the types; nothing here knows an entity.
//
//   /v1/entity/<path>   an entity, one of its attributes or collections
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

   // Serves a method on what `steps` lead to. Throws ApiError.
   //
   // Writes are checked as a whole before anything is written. The caller has to stand outside
   // any handler: each change is then dispatched to its end before the next is made.
   ApiAnswer serve(const ApiRequest& request, const ApiTarget& target);

   // A member of a collection, whether it stands or not.
   struct Place {
      Rex::Ptr<Rex::Entity> holder;
      const Rex::Member* member = nullptr;
      std::string key;
      std::string root;  // path of the store
   };

   ApiAnswer get(const Statestore::Steps& steps, const ApiTarget& target) const;
   ApiAnswer patch(const Statestore::Steps& steps, const std::string& body);
   ApiAnswer put(const Statestore::Steps& steps, const ApiTarget& target, const std::string& body);
   ApiAnswer remove(const Statestore::Steps& steps);

   ApiAnswer make(const Place& place, const ApiTarget& target, const std::string& body);
   void change(Rex::Entity& entity, const std::string& body);
   Place place(const Statestore::Steps& steps) const;
   void requireWritable(const std::string& root) const;

   const Rex::Ptr<Statestore::EntityManager> entityManager_;
   const ApiAccess access_;
};

}  // namespace Host
