#include "Statestore/Reconcile.h"

#include <map>

namespace Statestore {
namespace {

bool anyAuthored(const RowSm& row) {
   if (row.authored()) return true;
   for (auto [field, child] : row.children()) {
      if (anyAuthored(*child)) return true;
   }
   return false;
}

bool sameJson(const std::string& a, const std::string& b) {
   if (a == b) return true;
   try {
      return parseValue(a) == parseValue(b);
   } catch (const std::exception&) {
      return false;
   }
}

// A row with another type or other keys of its own is another one.
bool isSame(const RowSm& row, const RowImage& image) {
   if (row.entity()->entityType().name() != image.type) return false;
   for (const auto& member : row.entity()->entityType().members()) {
      if (member->kind != Rex::MemberKind::key) continue;
      auto theirs = image.fields.find(member->name);
      if (theirs == image.fields.end()) continue;
      if (!sameJson(theirs->second, member->toJson(*row.entity()).dump())) return false;
   }
   return true;
}

}  // namespace

void Reconcile::root(RowSm& root) {
   const RowImage* image = images_.at(root.path());
   const auto& members = root.entity()->entityType().members();
   if (image) {
      // Somebody else made it first: the place that stood for the whole, below, says nothing.
      if (!members.empty() && !root.authored(*members.front())) {
         table_.pending.drop(root, *members.front(), {});
      }
      return row(root, *image);
   }
   const bool sends = (restore_ || anyAuthored(root)) && !members.empty();
   root.allStatesIs(sends ? RowSm::State::fresh : RowSm::State::unwritten);
   // Others may make it before.
   root.stateIs(RowSm::State::unwritten);
   // Any place of it will do: the row goes out whole.
   if (sends) send(root, {members.front().get(), {}});
}

void Reconcile::row(RowSm& row, const RowImage& image) {
   Rex::Ptr<RowSm> standing(&row);
   row.stateIs(RowSm::State::standing);
   std::map<std::string, Place> places;
   for (const Place& place : placesOf(*row.entity())) {
      places.emplace(fieldOf(*row.entity(), *place.member, place.key), place);
   }
   for (const auto& [field, value] : image.fields) {
      if (places.contains(field)) continue;
      if (auto place = placeOf(*row.entity(), field)) {
         places.emplace(field, *place);
      } else {
         writer_.refuse(row.path() + '/' + field + ": no such place");
      }
   }
   for (const auto& [field, place] : places) {
      if (row.closed()) return;
      if (place.member->kind == Rex::MemberKind::key) continue;
      if (row.child(field) || images_.at(row.path() + '/' + field)) {
         child(row, place, field);
      } else {
         auto theirs = image.fields.find(field);
         value(row, place, theirs == image.fields.end() ? std::string() : theirs->second);
      }
   }
}

void Reconcile::value(RowSm& row, const Place& place, const std::string& theirs) {
   const bool points = place.member->kind == Rex::MemberKind::pointer ||
                       place.member->kind == Rex::MemberKind::references;
   PlaceValue value = valueAt(*row.entity(), place);
   std::string ours = value.json;
   // Null is none, and so is what points to an entity without a row.
   if (RowSm* target = table_.of(value.entity.get())) ours = References::toText(target->path());
   const bool none = theirs.empty() || (points && theirs == "null");
   if (none ? ours.empty() : sameJson(ours, theirs)) {
      // So that the place is known as one that points there, or is empty indeed.
      if (value.entity) none ? writer_.remove(row, place) : writer_.set(row, place, theirs);
   } else if (row.authored(*place.member)) {
      send(row, place);
   } else if (!none) {
      writer_.set(row, place, theirs);
   } else if (isKeyed(*place.member) || points) {
      writer_.remove(row, place);
   }
}

void Reconcile::child(RowSm& row, const Place& place, const std::string& field) {
   Rex::Ptr<RowSm> ours(row.child(field));
   const RowImage* theirs = images_.at(row.path() + '/' + field);
   // A directory is where several writers meet: who writes one entry does not own the others.
   const bool held = row.authored(*place.member) && !isDir(*row.entity());
   if (ours && theirs) {
      if (isSame(*ours, *theirs)) return this->row(*ours, *theirs);
      if (!row.authored(*place.member)) return writer_.put(row, place, images_);
      ours->allStatesIs(RowSm::State::fresh);
      send(row, place);
   } else if (theirs) {
      if (held || removed_.contains({row.path(), field})) return send(row, place);
      writer_.put(row, place, images_);
   } else if (restore_ || held || ours->state() == RowSm::State::fresh || anyAuthored(*ours)) {
      ours->allStatesIs(RowSm::State::fresh);
      send(row, place);
   } else if (ours->state() != RowSm::State::unwritten) {
      writer_.remove(row, place);
   }
}

void Reconcile::send(RowSm& row, const Place& place) {
   table_.note(row, *place.member, anyKeyOf(place));
}

}  // namespace Statestore
