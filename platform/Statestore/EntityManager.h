// A process's client of the state database: the tree that all clients of it share, and over it the
// entities that only this process has.
#pragma once

#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "Statestore/Mount.h"
#include "Statestore/Tree.h"

namespace Statestore {

class EntityManager : public Rex::PtrInterface {
 public:
   // A client of the present context's tree. Two supervisors in one test share a tree by giving
   // both contexts the same one: context.serviceIs<Statestore::Tree>(tree).
   EntityManager();
   ~EntityManager() override;

   // The entity at a path, or null: of this process, else of the tree.
   Rex::Ptr<Rex::Entity> getEntity(std::string_view path) const;
   // The same for decoded steps, which may lead on below a path.
   Found find(const Steps& steps) const;
   // All paths, in order.
   std::vector<std::string> paths() const;

   // Opens a group of mounts. The mounter has to outlive this manager, or the group's end.
   Rex::Ptr<MountGroup> getMountGroup(Mounter* mounter);

   // Finds or makes; see Tree::entityIs().
   Rex::Ptr<Rex::Entity> entityIs(std::string_view path, std::string_view typeName);
   // The same, and what it makes is seen by this process alone.
   Rex::Ptr<Rex::Entity> localEntityIs(std::string_view path, std::string_view typeName);

   // The letters of the mounts of a path, all of them one after the other; empty for a path that
   // nobody mounted. A path with a 'w' is this process's to write.
   std::string mountFlags(std::string_view path) const;

 private:
   friend class MountGroup;
   MountStatus mountIs(const Mount& mount);
   void forget(const MountGroup& group);

   Tree& tree_;
   Tree local_;
   std::map<std::string, std::string, std::less<>> mountFlags_;
   std::vector<Rex::Ptr<MountGroup>> groups_;
};

}  // namespace Statestore
