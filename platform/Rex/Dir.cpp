#include "Rex/Dir.h"

#include "Rex/Register.h"

REX_REGISTER(Rex::Dir)

namespace Rex {

Rex::Ptr<Entity> Dir::createEntity(const String& name, std::string_view typeName) {
   if (auto standing = entityPtr(name)) return standing;
   const EntityType* type = EntityType::find(typeName);
   REX_ASSERT(type);
   Rex::Ptr<Entity> entity = type->create();
   REX_ASSERT(entity);
   entityPtrIs(name, entity);
   return entity;
}

void Dir::entityPtrIs(const String& name, const Rex::Ptr<Entity>& entity) {
   if (!entity) throwMutatorArgNullPointerException("entityPtrIs");
   if (auto* old = entityPtr_.find(name); old && *old == entity) return;
   entity->bornIs();
   entityPtr_.insert(name, entity);
   rexChanged(entityPtrAttr.id, name);
}

}  // namespace Rex
