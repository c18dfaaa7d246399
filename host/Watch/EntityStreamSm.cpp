#include "host/Watch/EntityStreamSm.h"

#include "Rex/EntityType.h"

namespace Host {

EntityStreamSm::EntityStreamSm(Rex::Ptr<Statestore::EntityManager> entityManager,
                               Statestore::Steps steps, ApiStream& stream, bool standing)
    : entityManager_(std::move(entityManager)),
      steps_(std::move(steps)),
      entity_(entityManager_->find(steps_).entity),
      stream_(stream) {
   const std::string path = Statestore::encodePath(steps_);
   if (standing) {
      Rex::Json data{{"path", path}, {"value", Rex::entityToJson(*entity_)}};
      stream_.beginIs(eventText("changed", data));
   }
   entitySm_.make(entity_, path, *this);
   watchHolders();
}

// Everything on the way from the store's path down to the entity. What stands at a path of the
// store itself never leaves it.
void EntityStreamSm::watchHolders() {
   Statestore::Steps way;
   for (size_t i = 0; i + 1 < steps_.size(); ++i) {
      way.push_back(steps_[i]);
      auto holder = entityManager_->find(way).entity;
      if (holder) onAny(holder, &EntityStreamSm::handleHolder);
   }
}

void EntityStreamSm::handleHolder(const Rex::Change& change) {
   const Rex::Member* member = change.entity.entityType().member(change.attribute);
   // A plain value leads nowhere.
   if (!member || member->kind == Rex::MemberKind::scalar) return;
   if (entityManager_->find(steps_).entity == entity_) return;
   stream_.endIs(eventText("gone", {{"path", Statestore::encodePath(steps_)}}));
   close();
}

void EntityStreamSm::tellChanged(const std::string& path, const Rex::Json& value) {
   stream_.eventIs(eventText("changed", {{"path", path}, {"value", value}}));
}

void EntityStreamSm::tellRemoved(const std::string& path) {
   stream_.eventIs(eventText("removed", {{"path", path}}));
}

void EntityStreamSm::bornIs(const std::string& path, Rex::Json told) {
   if (bornIn_ != Rex::Dispatcher::reaction) born_.clear();
   bornIn_ = Rex::Dispatcher::reaction;
   born_[path] = std::move(told);
}

bool EntityStreamSm::isNews(const std::string& path, const std::string& attribute,
                            const Rex::Json& value) const {
   auto found = born_.find(path);
   return bornIn_ != Rex::Dispatcher::reaction || found == born_.end() ||
          found->second.at(attribute) != value;
}

}  // namespace Host
