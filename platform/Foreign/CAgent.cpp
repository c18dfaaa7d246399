#include "Foreign/CAgent.h"

#include "Rex/Assert.h"
#include "Statestore/Cell.h"

namespace AgentBase {

CAgent::CAgent(const Rex::String& name)
    : name_(name), entityManager_(Rex::make<Statestore::EntityManager>()) {
   redundancyStatus_ = Rex::dynamicPtr<Redundancy::RedundancyStatus>(entityManager_->entityIs(
       Cell::path("redundancy/status", 0).view(), "Redundancy::RedundancyStatus"));
   REX_ASSERT(redundancyStatus_);
}

CAgent::~CAgent() = default;

void CAgent::doMountsComplete(Statestore::MountStatus, const Rex::Ptr<Statestore::EntityManager>&) {
}

Rex::Ptr<Rex::Entity> CAgent::createLocalEntity(const Rex::String&, std::string_view typeName,
                                                std::string_view path) {
   REX_ASSERT(!localEntitiesCreated_);
   Rex::Ptr<Rex::Entity> entity = entityManager_->localEntityIs(path, typeName);
   REX_ASSERT(entity);
   return entity;
}

}  // namespace AgentBase
