#include "Statestore/RexPool.h"

#include "Statestore/EntityManager.h"

namespace RexPool {

Mount::Mount(const Rex::Ptr<Statestore::EntityManager>& entityManager)
    : entityManager_(entityManager) {}
Mount::~Mount() = default;

void Mount::doMount(std::string_view path, std::string_view typeName, const MountInfo&) {
   entityManager_->localEntityIs(path, typeName);
}

Rex::Ptr<Rex::Entity> Mount::getEntity(std::string_view path) const {
   return entityManager_->getEntity(path);
}

}  // namespace RexPool
