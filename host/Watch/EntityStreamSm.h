// One reader's stream of an entity: notices when the entity leaves the store, and tells what the
// machines of the entity and of those that it owns find.
#pragma once

#include <map>
#include <string>

#include "Rex/Owned.h"
#include "Rex/StateMachine.h"
#include "Statestore/EntityManager.h"
#include "host/ApiStream.h"
#include "host/Watch/EntitySm.h"

namespace Host {

class EntityStreamSm : public Rex::StateMachine {
 public:
   // `steps` lead to an entity of the store. The stream outlives the machine.
   EntityStreamSm(Rex::Ptr<Statestore::EntityManager> entityManager, Statestore::Steps steps,
                  ApiStream& stream, bool standing);

   void tellChanged(const std::string& path, const Rex::Json& value);
   void tellRemoved(const std::string& path);

   // Notes what was told of a member that came in the present reaction. Its changes of the same
   // reaction are delivered after its coming, and most have been told with it.
   void bornIs(const std::string& path, Rex::Json told);
   // Whether the value of a member's attribute has not been told with its coming.
   bool isNews(const std::string& path, const std::string& attribute, const Rex::Json& value) const;

 private:
   void watchHolders();
   void handleHolder(const Rex::Change& change);
   void doClose() override { entitySm_.reset(); }

   const Rex::Ptr<Statestore::EntityManager> entityManager_;
   const Statestore::Steps steps_;
   const Rex::Ptr<Rex::Entity> entity_;
   ApiStream& stream_;
   std::map<std::string, Rex::Json> born_;  // by path
   uint32_t bornIn_ = 0;                    // the reaction that `born_` is of
   Rex::OwnedMachine<EntitySm> entitySm_;
};

}  // namespace Host
