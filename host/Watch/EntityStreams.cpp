#include "host/Watch/EntityStreams.h"

#include "Rex/Owned.h"
#include "host/Watch/EntityStreamSm.h"

namespace Host {

void EntityStreams::serveIn(ApiResources& resources) {
   resources.resourceIs(
       {"/v1/stream/", {"GET"}, {"standing"}, [this](const ApiRequest&, const ApiTarget& target) {
           return serve(target);
        }});
}

ApiAnswer EntityStreams::serve(const ApiTarget& target) const {
   bool standing = standingWanted(target);
   Statestore::Steps steps(target.steps.begin() + 2, target.steps.end());
   if (!entityManager_->find(steps)) {
      throw ApiError(404, "there is no entity at '" + Statestore::encodePath(steps) + "'");
   }
   ApiAnswer answer;
   answer.stream = [manager = entityManager_, steps, standing](ApiStream& stream) {
      auto machine = std::make_shared<Rex::OwnedMachine<EntityStreamSm>>();
      machine->make(manager, steps, stream, standing);
      return machine;
   };
   return answer;
}

}  // namespace Host
