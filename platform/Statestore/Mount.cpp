#include "Statestore/Mount.h"

#include "Rex/Assert.h"
#include "Rex/Context.h"
#include "Statestore/EntityManager.h"
#include "Statestore/Replica.h"

namespace Statestore {

MountGroup::MountGroup(EntityManager& manager, Mounter& mounter)
    : manager_(&manager),
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
   if (!manager_) return;
   Rex::ContextScope scope(context_);
   // The mounter may let go of the group, and of the manager, while it is told.
   Rex::Ptr<MountGroup> group(this);
   MountStatus status = mountSuccess_;
   std::vector<std::string> paths;
   for (const Mount& mount : mounts_) {
      MountStatus one = manager_->mountIs(mount);
      if (status == mountSuccess_) status = one;
      paths.push_back(mount.path.stdString());
   }
   Replica* replica = manager_->tree_.replica();
   if (!replica) return tell(status);
   replica->loaded(paths, [group, status](bool ofTheirTypes) {
      group->tell(status == mountSuccess_ && !ofTheirTypes ? mountOtherType_ : status);
   });
}

void MountGroup::tell(MountStatus status) {
   if (!manager_) return;
   Rex::ContextScope scope(context_);
   Rex::Ptr<MountGroup> group(this);
   Rex::Ptr<EntityManager> manager(manager_);
   manager->forget(*this);
   mounter_.doMountsComplete(status, manager);
}

}  // namespace Statestore
