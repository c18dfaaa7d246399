// How a feeder gets at the entities that it fills.
#pragma once

#include <string_view>

#include "Rex/Assert.h"
#include "Rex/EntityType.h"
#include "Statestore/EntityManager.h"

namespace Host {

// The entity at a path of the store, made if nobody asked for it before.
template <class T>
Rex::Ptr<T> fedEntity(Statestore::EntityManager& manager, std::string_view path) {
   auto found = Rex::dynamicPtr<T>(manager.entityIs(path, T::staticType().name()));
   REX_ASSERT(found);
   return found;
}

// The same of a path that the agent has for itself: no other process ever sees it.
template <class T>
Rex::Ptr<T> localFedEntity(Statestore::EntityManager& manager, std::string_view path) {
   auto found = Rex::dynamicPtr<T>(manager.localEntityIs(path, T::staticType().name()));
   REX_ASSERT(found);
   return found;
}

}  // namespace Host
