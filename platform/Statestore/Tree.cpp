#include "Statestore/Tree.h"

#include "Rex/Dir.h"
#include "Rex/EntityType.h"
#include "Statestore/Replica.h"

namespace Statestore {
namespace {

std::string join(const Steps& steps) {
   std::string path;
   for (const std::string& step : steps) {
      if (!path.empty()) path += '/';
      path += step;
   }
   return path;
}

}  // namespace

Rex::Ptr<Rex::Entity> Tree::entityIs(std::string_view path, std::string_view typeName) {
   const Rex::EntityType* type = Rex::EntityType::find(typeName);
   if (!type) return nullptr;
   Steps steps = splitPath(path);
   if (steps.empty()) return nullptr;
   if (Found standing = find(steps)) {
      return &standing.entity->entityType() == type ? standing.entity : nullptr;
   }
   Rex::Ptr<Rex::Entity> made = type->create();
   if (!made) return nullptr;
   Steps holder(steps.begin(), steps.end() - 1);
   if (auto dir = Rex::dynamicPtr<Rex::Dir>(find(holder).entity)) {
      // Nobody has written it: another process may have.
      if (replica_) replica_->unwrittenIs(*made);
      dir->entityPtrIs(Rex::String(steps.back()), made);
   } else {
      made->bornIs();
      entities_.emplace(join(steps), made);
      if (replica_) replica_->rootIs(join(steps), made);
   }
   return made;
}

Found Tree::find(const Steps& steps) const {
   // A step with a slash of its own is a key, and no path of the tree goes through it.
   std::string prefix;
   auto longest = entities_.end();
   size_t taken = 0;
   for (size_t i = 0; i < steps.size() && steps[i].find('/') == std::string::npos; ++i) {
      if (i) prefix += '/';
      prefix += steps[i];
      auto at = entities_.find(prefix);
      if (at == entities_.end()) continue;
      longest = at;
      taken = i + 1;
   }
   if (longest == entities_.end()) return {};
   return {Rex::findBelow(longest->second, steps, taken), longest->first};
}

std::vector<std::string> Tree::paths() const {
   std::vector<std::string> all;
   for (const auto& [path, entity] : entities_) all.push_back(path);
   return all;
}

}  // namespace Statestore
