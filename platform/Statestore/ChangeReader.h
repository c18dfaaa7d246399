// Applies the changes of others to the tree, in their order.
#pragma once

#include "Statestore/Flight.h"
#include "Statestore/TreeWriter.h"

namespace Statestore {

class ChangeReader {
 public:
   ChangeReader(RowTable& table, TreeWriter& writer) : table_(table), writer_(writer) {}

   // `flight` is this process's change that comes later in the store's order, or null.
   void apply(const Change& change, const Flight* flight);

 private:
   void make(const Operation& operation, const RowImages& images, const Flight* flight);
   void write(const Operation& operation, const Flight* flight);
   void removeRoot(const Operation& operation, const Flight* flight);
   // Whether what this process does to a place comes after what others did before.
   bool overridden(const RowSm& row, const Place& place, const std::string& field,
                   const Flight* flight) const;
   // The row at a path, if changes of others are for it; null for one to be passed over.
   RowSm* rowFor(const std::string& path) const;

   RowTable& table_;
   TreeWriter& writer_;
};

}  // namespace Statestore
