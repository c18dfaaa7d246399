// What the replica is writing into the tree just now, so that it does not note its own writing.
#pragma once

#include <functional>

#include "Statestore/Place.h"

namespace Statestore {

class RowSm;

class Applying {
 public:
   // Runs `write`, which changes one place of a row, and all that it sets off. Called outside any
   // reaction.
   void write(RowSm& row, const Place& place, const std::function<void()>& write);

   // Whether a change that is told of has brought nothing but what was written.
   bool ended(const RowSm& row, const Rex::Member& member, const Rex::AnyKey& key) const;
   // Whether an entity is what was written, or below it.
   bool puts(const Rex::Entity& entity) const;

 private:
   const RowSm* row_ = nullptr;
   const Place* place_ = nullptr;
   PlaceValue written_;
};

}  // namespace Statestore
