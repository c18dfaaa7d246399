// GET /v1/stream/<path>: every change of an entity and of all that it owns, whatever its type.
#pragma once

#include "Statestore/EntityManager.h"
#include "host/ApiResources.h"

namespace Host {

class EntityStreams {
 public:
   explicit EntityStreams(Rex::Ptr<Statestore::EntityManager> entityManager)
       : entityManager_(std::move(entityManager)) {}

   void serveIn(ApiResources& resources);

 private:
   ApiAnswer serve(const ApiTarget& target) const;

   const Rex::Ptr<Statestore::EntityManager> entityManager_;
};

}  // namespace Host
