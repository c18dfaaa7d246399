#include "host/Watch/EntitySm.h"

#include <algorithm>

#include "Rex/Dir.h"
#include "Statestore/Path.h"
#include "host/Watch/EntityStreamSm.h"

namespace Host {

EntitySm::EntitySm(Rex::Ptr<Rex::Entity> entity, const std::string& path, EntityStreamSm& parent)
    : entity_(std::move(entity)), path_(path), parent_(parent) {
   onAny(entity_, &EntitySm::handleAny);

   handleInitialized();
}

void EntitySm::handleInitialized() {
   for (const auto& member : entity_->entityType().members()) {
      if (member->kind != Rex::MemberKind::children) continue;
      for (const std::string& key : member->keys(*entity_)) {
         std::string path = pathOf(*member, key);
         children_.make(Rex::String(path), member->child(*entity_, key), path, parent_);
      }
   }
}

void EntitySm::handleAny(const Rex::Change& change) {
   const Rex::Member* member = entity_->entityType().member(change.attribute);
   if (!member) return;
   if (member->kind == Rex::MemberKind::children) {
      handleChild(*member, member->keyText(change.key));
   } else if (change.key.has()) {
      handleElement(*member, member->keyText(change.key));
   } else {
      Rex::Json value = Rex::memberToJson(*member, *entity_);
      if (parent_.isNews(path_, member->name, value)) {
         parent_.tellChanged(path_ + '/' + member->name, value);
      }
   }
}

void EntitySm::handleChild(const Rex::Member& member, const std::string& key) {
   const std::string path = pathOf(member, key);
   const Rex::String name(path);
   auto standing = children_.get(name);
   auto child = member.child(*entity_, key);
   if (standing && standing->entity() == child) return;
   children_.erase(name);
   if (!child) {
      parent_.tellRemoved(path);
      return;
   }
   Rex::Json whole = Rex::entityToJson(*child);
   parent_.tellChanged(path, whole);
   parent_.bornIs(path, std::move(whole));
   children_.make(name, child, path, parent_);
}

// The collection's JSON is an array in the order of its keys.
void EntitySm::handleElement(const Rex::Member& member, const std::string& key) {
   auto keys = member.keys(*entity_);
   auto at = std::find(keys.begin(), keys.end(), key);
   Rex::Json whole = member.toJson(*entity_);
   if (!parent_.isNews(path_, member.name, whole)) return;
   if (at == keys.end()) {
      parent_.tellRemoved(pathOf(member, key));
   } else {
      parent_.tellChanged(pathOf(member, key), whole.at(static_cast<size_t>(at - keys.begin())));
   }
}

// In a directory an entry's name follows at once.
std::string EntitySm::pathOf(const Rex::Member& member, const std::string& key) const {
   bool dir = &entity_->entityType() == &Rex::Dir::staticType();
   std::string holder = dir ? path_ : path_ + '/' + member.name;
   return holder + '/' + Statestore::encodeStep(key);
}

}  // namespace Host
