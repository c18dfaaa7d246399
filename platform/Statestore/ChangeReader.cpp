#include "Statestore/ChangeReader.h"

#include "Statestore/Reconcile.h"

namespace Statestore {

void ChangeReader::apply(const Change& change, const Flight* flight) {
   const Operations& operations = change.operations;
   for (size_t i = 0; i < operations.size();) {
      const Operation& operation = operations[i++];
      if (operation.kind != Operation::Kind::make) {
         write(operation, flight);
         continue;
      }
      // A row and all that follows of it is seen as one.
      RowImages images;
      images.apply(operation);
      const std::string path = pathBelow(operation.row, operation.field);
      while (i < operations.size() && isWithin(operations[i].row, path)) {
         images.apply(operations[i++]);
      }
      if (flight) flight->applyTo(images, path);
      make(operation, images, flight);
   }
   writer_.settle();
}

RowSm* ChangeReader::rowFor(const std::string& path) const {
   RowSm* found = table_.at(path);
   if (!found || !found->root().isRead()) return nullptr;
   // One that was made here stands in the place of the one that is meant.
   for (const RowSm* row = found; row; row = row->holder()) {
      if (row->state() == RowSm::State::fresh) return nullptr;
   }
   return found;
}

bool ChangeReader::overridden(const RowSm& row, const Place& place, const std::string& field,
                              const Flight* flight) const {
   if (flight && flight->covers(row.path(), field)) return true;
   // A row that stands in the store by now is not sent again.
   const RowSm* child = row.child(field);
   if (child && child->state() == RowSm::State::standing) return false;
   return table_.pending.has(row, *place.member, anyKeyOf(place));
}

void ChangeReader::make(const Operation& operation, const RowImages& images, const Flight* flight) {
   std::string path = pathBelow(operation.row, operation.field);
   if (RowSm* root = table_.at(path); root && !root->holder()) {
      if (!root->isRead()) return;
      if (images.at(path)->type != root->entity()->entityType().name()) {
         return writer_.refuse(path + ": is of another type here");
      }
      return Reconcile(table_, writer_, images).root(*root);
   }
   // What is a root to one process may be a directory's entry to another.
   size_t cut = operation.row.empty() ? path.rfind('/') : operation.row.size();
   if (cut == std::string::npos) return;
   RowSm* row = rowFor(path.substr(0, cut));
   if (!row) return;
   const std::string field = path.substr(cut + 1);
   auto place = placeOf(*row->entity(), field);
   if (!place) return writer_.refuse(path + ": no such place");
   if (!overridden(*row, *place, field, flight)) writer_.put(*row, *place, images);
}

void ChangeReader::write(const Operation& operation, const Flight* flight) {
   if (operation.row.empty()) return removeRoot(operation, flight);
   RowSm* row = rowFor(operation.row);
   if (!row) return;
   auto place = placeOf(*row->entity(), operation.field);
   if (!place) return writer_.refuse(operation.row + '/' + operation.field + ": no such place");
   if (overridden(*row, *place, operation.field, flight)) return;
   if (operation.kind == Operation::Kind::set) {
      writer_.set(*row, *place, operation.value);
   } else {
      writer_.remove(*row, *place);
   }
}

// A root stays where it was asked for; it is only written anew.
void ChangeReader::removeRoot(const Operation& operation, const Flight* flight) {
   if (operation.kind != Operation::Kind::remove) return;
   const std::string& path = operation.field;
   if (RowSm* row = rowFor(path); row && !row->holder()) {
      return row->allStatesIs(RowSm::State::unwritten);
   }
   size_t cut = path.rfind('/');
   if (cut == std::string::npos) return;
   write({Operation::Kind::remove, path.substr(0, cut), path.substr(cut + 1), {}}, flight);
}

}  // namespace Statestore
