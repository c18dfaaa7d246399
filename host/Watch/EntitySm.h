// Follows one entity of a stream by its description, and with a machine of its own each that it
// owns.
#pragma once

#include <string>

#include "Rex/EntityType.h"
#include "Rex/Owned.h"
#include "Rex/StateMachine.h"

namespace Host {

class EntityStreamSm;

class EntitySm : public Rex::StateMachine {
 public:
   // `path` as in a request, encoded.
   EntitySm(Rex::Ptr<Rex::Entity> entity, const std::string& path, EntityStreamSm& parent);

   const Rex::Ptr<Rex::Entity>& entity() const { return entity_; }

 private:
   void handleInitialized();
   void handleAny(const Rex::Change& change);
   void handleChild(const Rex::Member& member, const std::string& key);
   void handleElement(const Rex::Member& member, const std::string& key);
   std::string pathOf(const Rex::Member& member, const std::string& key) const;
   void doClose() override { children_.clear(); }

   const Rex::Ptr<Rex::Entity> entity_;
   const std::string path_;
   EntityStreamSm& parent_;
   Rex::OwnedMachines<EntitySm, Rex::String> children_;  // by path
};

}  // namespace Host
