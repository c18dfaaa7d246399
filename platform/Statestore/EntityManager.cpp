#include "Statestore/EntityManager.h"

#include <algorithm>

#include "Rex/Assert.h"
#include "Rex/Context.h"
#include "Rex/EntityType.h"

namespace Statestore {

EntityManager::EntityManager() : tree_(Rex::Context::current().service<Tree>()) {}
EntityManager::~EntityManager() {
   for (const auto& group : groups_) group->manager_ = nullptr;
}

Rex::Ptr<Rex::Entity> EntityManager::getEntity(std::string_view path) const {
   return find(splitPath(path)).entity;
}

Found EntityManager::find(const Steps& steps) const {
   if (Found local = local_.find(steps)) return local;
   return tree_.find(steps);
}

std::vector<std::string> EntityManager::paths() const {
   std::vector<std::string> all = tree_.paths();
   std::vector<std::string> local = local_.paths();
   all.insert(all.end(), local.begin(), local.end());
   std::sort(all.begin(), all.end());
   return all;
}

Rex::Ptr<MountGroup> EntityManager::getMountGroup(Mounter* mounter) {
   REX_ASSERT(mounter);
   return groups_.emplace_back(Rex::make<MountGroup>(*this, *mounter));
}

Rex::Ptr<Rex::Entity> EntityManager::entityIs(std::string_view path, std::string_view typeName) {
   bool own = bool(local_.find(splitPath(path)));
   return (own ? local_ : tree_).entityIs(path, typeName);
}

Rex::Ptr<Rex::Entity> EntityManager::localEntityIs(std::string_view path,
                                                   std::string_view typeName) {
   // Whoever fills the entity may have come first, and then it stands in the tree.
   bool shared = bool(tree_.find(splitPath(path)));
   return (shared ? tree_ : local_).entityIs(path, typeName);
}

std::string EntityManager::mountFlags(std::string_view path) const {
   auto at = mountFlags_.find(path);
   return at == mountFlags_.end() ? std::string() : at->second;
}

MountStatus EntityManager::mountIs(const Mount& mount) {
   if (!entityIs(mount.path.view(), mount.typeName.view())) {
      return getEntity(mount.path.view()) ? mountOtherType_ : mountUnknownType_;
   }
   mountFlags_[mount.path.stdString()] += mount.flags.view();
   return mountSuccess_;
}

void EntityManager::forget(const MountGroup& group) {
   std::erase_if(groups_, [&](const auto& standing) { return standing.get() == &group; });
}

}  // namespace Statestore
