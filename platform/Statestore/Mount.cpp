#include "Statestore/Mount.h"

#include "Rex/Assert.h"
#include "Rex/Context.h"
#include "Statestore/EntityManager.h"

namespace Statestore {

MountGroup::MountGroup(EntityManager& manager, Mounter& mounter)
    : manager_(manager),
      mounter_(mounter),
      context_(Rex::Context::current()),
      turn_(context_.clock()) {
   turn_.handlerIs(nullptr, [this] { handleTurn(); });
}

void MountGroup::doMount(const Mount& mount) {
   REX_ASSERT(!closed_);
   mounts_.push_back(mount);
}

void MountGroup::doClose(bool /*forgiving*/, const Rex::String& /*name*/, double /*timeLimit*/) {
   REX_ASSERT(!closed_);
   closed_ = true;
   turn_.timeMinIs(0.0);
}

void MountGroup::handleTurn() {
   Rex::ContextScope scope(context_);
   // The mounter may let go of the group, and of the manager, while it is told.
   Rex::Ptr<MountGroup> group(this);
   Rex::Ptr<EntityManager> manager(&manager_);
   MountStatus status = mountSuccess_;
   for (const Mount& mount : mounts_) {
      MountStatus one = manager->mountIs(mount);
      if (status == mountSuccess_) status = one;
   }
   manager->forget(*this);
   mounter_.doMountsComplete(status, manager);
}

}  // namespace Statestore
