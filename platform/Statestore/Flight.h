// The one change of this process that is on its way: sent, and not seen among the store's changes.
#pragma once

#include <string>
#include <unordered_set>

#include "Statestore/RowImages.h"

namespace Statestore {

class Flight {
 public:
   enum class State {
      waiting,  // to be sent, or sent again
      sent,
      made,
   };

   Flight(uint64_t number, Operations operations)
       : number(number), operations(std::move(operations)) {}

   const uint64_t number;
   const Operations operations;
   State state = State::waiting;

   // Whether this change overrides what others did before it to a field of a row: it writes the
   // field too, or makes or removes the row or one above it.
   bool covers(const std::string& row, const std::string& field) const;
   // Does to rows that others made at a path what this change will do to them.
   void applyTo(RowImages& rows, const std::string& path) const;

 private:
   void index() const;

   // Made when first asked for: it seldom happens that others write meanwhile.
   mutable std::unordered_set<std::string> places_;  // row, newline, field
   mutable std::unordered_set<std::string> rows_;    // that it makes or removes
};

}  // namespace Statestore
