#include "Statestore/RowWriter.h"

#include "Rex/EntityType.h"

namespace Statestore {

Operations RowWriter::take(size_t most) {
   most_ = most;
   operations_.clear();
   while (operations_.size() < most_ && left_.empty()) {
      auto note = table_.pending.take();
      if (!note) break;
      write(*note);
   }
   // In the order in which they would have been written.
   for (auto at = left_.rbegin(); at != left_.rend(); ++at) {
      RowSm& holder = *(*at)->holder();
      auto place = placeOf(*holder.entity(), (*at)->field());
      table_.pending.noteFirst(holder, *place->member, anyKeyOf(*place));
   }
   left_.clear();
   return std::move(operations_);
}

void RowWriter::write(const Note& note) {
   RowSm* whole = nullptr;
   for (RowSm* row = note.row.get(); row; row = row->holder()) {
      if (row->state() != RowSm::State::standing) whole = row;
   }
   if (whole) return writeWhole(*whole);
   writePlace(*note.row,
              {note.member, note.key.has() ? note.member->keyText(note.key) : std::string()});
}

void RowWriter::writePlace(RowSm& row, const Place& place) {
   const std::string field = fieldOf(*row.entity(), *place.member, place.key);
   if (RowSm* child = row.child(field)) {
      if (child->state() != RowSm::State::standing) writeWhole(*child);
      return;
   }
   std::string value = valueOf(row, field, place);
   if (value.empty()) {
      operations_.push_back({Operation::Kind::remove, row.path(), field, {}});
   } else {
      operations_.push_back({Operation::Kind::set, row.path(), field, std::move(value)});
   }
}

void RowWriter::writeWhole(RowSm& row) {
   // A holder is cut between the rows that it holds.
   if (row.holder() && operations_.size() >= most_) {
      left_.emplace_back(&row);
      return;
   }
   row.stateIs(RowSm::State::standing);
   operations_.push_back({Operation::Kind::make,
                          row.holder() ? row.holder()->path() : std::string(),
                          std::string(row.field()), row.entity()->entityType().name()});
   writeFields(row);
   for (auto [field, child] : row.children()) writeWhole(*child);
}

void RowWriter::writeFields(RowSm& row) {
   const Rex::Entity& entity = *row.entity();
   auto write = [&](const Place& place) {
      std::string field = fieldOf(entity, *place.member, place.key);
      if (row.child(field)) return;
      std::string value = valueOf(row, field, place);
      if (value.empty() && isKeyed(*place.member)) return;
      operations_.push_back({Operation::Kind::set, row.path(), std::move(field),
                             value.empty() ? "null" : std::move(value)});
   };
   const auto waits = table_.references.waitsOf(row.path());
   const std::vector<Place> places = placesOf(entity);
   for (bool keys : {true, false}) {
      for (const Place& place : places) {
         if ((place.member->kind == Rex::MemberKind::key) == keys) write(place);
      }
   }
   // Places that are empty only until their targets come.
   for (const auto& [field, target] : waits) {
      auto place = placeOf(entity, field);
      if (!place || valueAt(entity, *place).entity) continue;
      table_.references.waits({row.path(), field}, target);
      operations_.push_back({Operation::Kind::set, row.path(), field, References::toText(target)});
   }
}

// Empty for a place that is to be empty. A reference to what does not stand in the store is none.
std::string RowWriter::valueOf(RowSm& row, const std::string& field, const Place& place) {
   PlaceValue value = valueAt(*row.entity(), place);
   if (!value.json.empty()) return value.json;
   const References::PlaceName name{row.path(), field};
   if (RowSm* target = value.entity ? table_.of(value.entity.get()) : nullptr) {
      table_.references.points(name, target->path());
      return References::toText(target->path());
   }
   table_.references.pointsNowhere(name);
   if (value.entity) {
      table_.references.dangles(name, value.entity);
   } else {
      table_.references.endWait(name);
   }
   return {};
}

}  // namespace Statestore
