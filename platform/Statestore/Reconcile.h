// Brings the tree and the store together where the list of changes does not say what happened: at
// the first load of a root, and when all is loaded again. What this process wrote last stands, the
// store is changed; in all else the store is right.
#pragma once

#include <set>

#include "Statestore/TreeWriter.h"

namespace Statestore {

class Reconcile {
 public:
   // `restore`: the store was emptied, so that what it does not have is sent whoever wrote it.
   // `removed`: what this process removed, and the store may not know.
   Reconcile(RowTable& table, TreeWriter& writer, const RowImages& images, bool restore = false,
             const std::set<References::PlaceName>& removed = {})
       : table_(table), writer_(writer), images_(images), restore_(restore), removed_(removed) {}

   void root(RowSm& root);

 private:
   void row(RowSm& row, const RowImage& image);
   void value(RowSm& row, const Place& place, const std::string& theirs);
   void child(RowSm& row, const Place& place, const std::string& field);
   void send(RowSm& row, const Place& place);

   RowTable& table_;
   TreeWriter& writer_;
   const RowImages& images_;
   const bool restore_;
   const std::set<References::PlaceName> removed_;
};

}  // namespace Statestore
