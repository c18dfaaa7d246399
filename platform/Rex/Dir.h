// A named directory of entities.
#pragma once

#include "Rex/Entity.h"
#include "Rex/String.h"

namespace Rex {

class Dir : public Entity {
   REX_ENTITY(Dir, Entity)
   REX_CHILDREN_OF_ANY_TYPE(entityPtr)
   REX_ENTITY_END()

   // The entry of that name: the one that is there, or else a new one of the named type. Ends the
   // process for a type that is not known.
   Rex::Ptr<Entity> createEntity(const String& name, std::string_view typeName);
   // Puts an entity that stands already into the directory.
   void entityPtrIs(const String& name, const Rex::Ptr<Entity>& entity);
   void deleteEntity(const String& name) { entityPtrDel(name); }
};

}  // namespace Rex
