// What the management API serves of the state store: its entities, their streams, and events.
#pragma once

#include "host/ApiEntities.h"
#include "host/Watch/EntityStreams.h"
#include "host/Watch/LldpEvents.h"

namespace Host {

class StoreApi {
 public:
   // In `resources`, which this has to outlive. `besideAgent`: see LldpEvents.
   StoreApi(ApiResources& resources, const Rex::Ptr<Statestore::EntityManager>& manager,
            ApiAccess access, bool besideAgent = true)
       : entities_(manager, std::move(access)), events_(manager, besideAgent), streams_(manager) {
      entities_.serveIn(resources);
      events_.serveIn(resources);
      streams_.serveIn(resources);
   }
   StoreApi(const StoreApi&) = delete;
   StoreApi& operator=(const StoreApi&) = delete;

 private:
   ApiEntities entities_;
   LldpEvents events_;
   EntityStreams streams_;
};

}  // namespace Host
