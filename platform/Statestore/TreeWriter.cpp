#include "Statestore/TreeWriter.h"

#include "Rex/Log.h"
#include "Rex/Trace.h"
#include "Statestore/RowBuilder.h"

namespace Statestore {
namespace {

const Rex::TraceHandle trace("Statestore", false);

const Rex::LogHandle STATESTORE_VALUE_REFUSED(
    "STATESTORE_VALUE_REFUSED", 4, "What the state store holds is not taken: %s.",
    "A row or a value in the state store is not one that this version knows. It is left out; all "
    "others are taken.",
    "Find out who writes it. Processes of different versions may share a store for a while.", 60, 1,
    0);

References::PlaceName nameOf(const RowSm& row, const Place& place) {
   return {row.path(), fieldOf(*row.entity(), *place.member, place.key)};
}

}  // namespace

void TreeWriter::refuse(const std::string& words) {
   ++refused_;
   TRACE(trace, 2, "Refused: " << words);
   Rex::log(STATESTORE_VALUE_REFUSED, Rex::String(words));
}

void TreeWriter::set(RowSm& row, const Place& place, const std::string& text) {
   const Rex::Member& member = *place.member;
   try {
      switch (member.kind) {
         case Rex::MemberKind::scalar:
         case Rex::MemberKind::values:
         case Rex::MemberKind::mapping: {
            Rex::Json json = parseValue(text);
            auto write = member.decodeElement(place.key, json, {});
            if (!isKeyed(member)) row.authoredIs(member, false);
            table_.applying.write(row, place, [&] { write(*row.entity()); });
            return;
         }
         case Rex::MemberKind::references:
         case Rex::MemberKind::pointer:
            if (auto target = References::fromText(text)) return point(row, place, *target);
            if (text == "null") return remove(row, place);
            throw Rex::JsonError("", "expected a path");
         default:
            throw Rex::JsonError("", "is not written");
      }
   } catch (const std::exception& error) {
      refuse(row.path() + '/' + nameOf(row, place).second + ": " + error.what());
   }
}

void TreeWriter::point(RowSm& row, const Place& place, const std::string& target) {
   const References::PlaceName name = nameOf(row, place);
   RowSm* standing = table_.at(target);
   if (!standing) {
      table_.references.pointsNowhere(name);
      table_.references.waits(name, target);
      return empty(row, place);
   }
   Rex::Ptr<Rex::Entity> entity = standing->entity();
   bool fits = false;
   table_.applying.write(row, place,
                         [&] { fits = place.member->put(*row.entity(), place.key, entity); });
   if (!fits) return refuse(name.first + '/' + name.second + ": does not point to " + target);
   table_.references.points(name, target);
}

void TreeWriter::put(RowSm& row, const Place& place, const RowImages& images) {
   Rex::Ptr<RowSm> standing(&row);
   const References::PlaceName name = nameOf(row, place);
   if (place.member->kind != Rex::MemberKind::children &&
       place.member->kind != Rex::MemberKind::pointer) {
      return refuse(name.first + '/' + name.second + ": holds no row");
   }
   int level = 0;
   for (const RowSm* holder = &row; holder; holder = holder->holder()) ++level;
   RowBuilder builder(table_, images);
   auto entity = builder.build(*row.entity(), place, name.first + '/' + name.second, level);
   builder.point();
   for (const std::string& fault : builder.faults) refuse(fault);
   remove(row, place);
   if (!entity || row.closed()) return;
   bool fits = false;
   table_.applying.write(row, place,
                         [&] { fits = place.member->put(*row.entity(), place.key, entity); });
   if (!fits) refuse(name.first + '/' + name.second + ": no row of that type stands there");
   builder.tell();
}

void TreeWriter::remove(RowSm& row, const Place& place) {
   table_.references.endWait(nameOf(row, place));
   table_.references.pointsNowhere(nameOf(row, place));
   empty(row, place);
}

void TreeWriter::empty(RowSm& row, const Place& place) {
   if (valueAt(*row.entity(), place) == PlaceValue()) return;
   if (!isKeyed(*place.member) && place.member->kind != Rex::MemberKind::pointer) {
      return refuse(row.path() + '/' + place.member->name + ": cannot be removed");
   }
   table_.applying.write(row, place, [&] {
      if (isKeyed(*place.member)) {
         place.member->removeKey(*row.entity(), place.key);
      } else {
         place.member->put(*row.entity(), {}, nullptr);
      }
   });
}

void TreeWriter::settle() {
   for (auto due = table_.references.takeDue(); !due.empty(); due = table_.references.takeDue()) {
      for (const References::Due& one : due) settle(one);
   }
}

void TreeWriter::settle(const References::Due& due) {
   RowSm* row = table_.at(due.place.first);
   auto place = row ? placeOf(*row->entity(), due.place.second) : std::nullopt;
   if (!place) return;
   if (due.gone) {
      if (valueAt(*row->entity(), *place).entity != due.gone) return;
   } else {
      if (!table_.references.isWaiting(due.place, due.target)) return;
      if (table_.pending.has(*row, *place->member, anyKeyOf(*place))) {
         return table_.references.endWait(due.place);
      }
      if (!table_.at(due.target)) return;
   }
   if (due.target.empty()) return remove(*row, *place);
   point(*row, *place, due.target);
}

}  // namespace Statestore
