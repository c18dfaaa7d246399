// Makes the operations of what is pending, from the entities as they stand now.
#pragma once

#include "Statestore/RowTable.h"
#include "Statestore/Store.h"

namespace Statestore {

class RowWriter {
 public:
   explicit RowWriter(RowTable& table) : table_(table) {}

   // Those of a change of about `most` operations; what is left stays pending.
   Operations take(size_t most);

 private:
   void write(const Note& note);
   void writePlace(RowSm& row, const Place& place);
   // The row whole, and all below it.
   void writeWhole(RowSm& row);
   void writeFields(RowSm& row);
   std::string valueOf(RowSm& row, const std::string& field, const Place& place);

   RowTable& table_;
   Operations operations_;
   size_t most_ = 0;
   std::vector<Rex::Ptr<RowSm>> left_;  // rows for which there was no room
};

}  // namespace Statestore
