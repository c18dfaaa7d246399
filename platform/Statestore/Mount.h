// Mounts: how a process asks for the entities that it reads and writes.
#pragma once

#include <boost/describe/enum.hpp>
#include <vector>

#include "Rex/Ptr.h"
#include "Rex/String.h"
#include "Rex/Timer.h"

namespace Rex {
class Context;
}

namespace Statestore {

class EntityManager;

enum MountStatus {
   mountPending_ = 0,      // not closed yet, or not at the loop's turn
   mountUnknownType_ = 1,  // no library of the process describes that type
   mountOtherType_ = 2,    // an entity of another type stands at the path
   mountSuccess_ = 4,
};
BOOST_DESCRIBE_ENUM(MountStatus, mountPending_, mountUnknownType_, mountOtherType_, mountSuccess_)

// One entity asked for. `flags` are letters: "r" reads, "w" writes; "i" and "f" are handed through.
struct Mount {
   Rex::String path;
   Rex::String typeName;
   Rex::String flags;
   Mount(const Rex::String& path, const Rex::String& typeName, const Rex::String& flags)
       : path(path), typeName(typeName), flags(flags) {}
};

// Who waits for mounts.
class Mounter {
 public:
   virtual ~Mounter() = default;
   virtual void doMountsComplete(MountStatus status,
                                 const Rex::Ptr<EntityManager>& entityManager) = 0;
};

// Mounts that are done together. Made by EntityManager::getMountGroup(), which keeps it until the
// mounter was told.
class MountGroup : public Rex::PtrInterface {
 public:
   MountGroup(EntityManager& manager, Mounter& mounter);

   void doMount(const Mount& mount);
   // No more mounts come. In a later turn of the loop they proceed, and end in one call of the
   // mounter's doMountsComplete() with the first failure, or success; with a store outside the
   // process only when what it holds was read, however long that takes. The arguments (whether a
   // failure is forgiven, a name for it, a time limit in seconds with 0 for none) have no effect.
   void doClose(bool forgiving, const Rex::String& name, double timeLimit);

   const std::vector<Mount>& mounts() const { return mounts_; }

 private:
   friend class EntityManager;
   void handleTurn();
   void tell(MountStatus status);

   EntityManager* manager_;  // null when it went first
   Mounter& mounter_;
   Rex::Context& context_;
   Rex::Timer turn_;
   std::vector<Mount> mounts_;
   bool closed_ = false;
};

}  // namespace Statestore
