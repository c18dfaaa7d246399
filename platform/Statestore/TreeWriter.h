// Writes into the tree what others have in the store: one place at a time, each dispatched to its
// end. What comes from there may be anything: what is wrong is refused and counted.
#pragma once

#include "Statestore/RowImages.h"
#include "Statestore/RowTable.h"

namespace Statestore {

class TreeWriter {
 public:
   explicit TreeWriter(RowTable& table) : table_(table) {}

   // A value, or what a place points to.
   void set(RowSm& row, const Place& place, const std::string& text);
   // The row below `row` at a place, from what the images hold there; what stands goes first.
   void put(RowSm& row, const Place& place, const RowImages& images);
   // A place is to be empty.
   void remove(RowSm& row, const Place& place);
   // Fills and empties places whose targets came and went.
   void settle();

   void refuse(const std::string& words);
   uint64_t refused() const { return refused_; }

 private:
   void point(RowSm& row, const Place& place, const std::string& target);
   void settle(const References::Due& due);
   void empty(RowSm& row, const Place& place);

   RowTable& table_;
   uint64_t refused_ = 0;
};

}  // namespace Statestore
