// Tables in shared memory. In this build a table is an entity that the process has for itself,
// filled by the host.
#pragma once

#include <string_view>

#include "Rex/Entity.h"
#include "Rex/Ptr.h"

namespace Statestore {
class EntityManager;
}

namespace RexPool {

class MountInfo {
 public:
   explicit MountInfo(int mode) : mode_(mode) {}
   int mode() const { return mode_; }

 private:
   int mode_;
};

class Mount : public Rex::PtrInterface {
 public:
   explicit Mount(const Rex::Ptr<Statestore::EntityManager>& entityManager);
   ~Mount() override;

   // Maps a table; it stands at once.
   void doMount(std::string_view path, std::string_view typeName, const MountInfo& mountInfo);
   // The table at a path that was mapped; null for a type that is not known.
   Rex::Ptr<Rex::Entity> getEntity(std::string_view path) const;

 private:
   Rex::Ptr<Statestore::EntityManager> entityManager_;
};

}  // namespace RexPool
