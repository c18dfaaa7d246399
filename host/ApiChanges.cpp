#include "host/ApiChanges.h"

#include <algorithm>

#include "Rex/Dir.h"
#include "host/ApiMessage.h"
#include "host/ApiTarget.h"
#include "host/Settings.h"

namespace Host {

using Statestore::Steps;

namespace {

constexpr size_t maxSteps = 64;  // nothing in the store is nearly as deep

Rex::Member::Write checked(const Rex::EntityType& type, Rex::Json attributes) {
   try {
      ApiAccess::stamp(type, attributes);
      return decodeSettings(type, attributes);
   } catch (const Rex::JsonError& error) {
      throw ApiError(400, error.what(), error.path());
   }
}

bool isCollection(const Rex::Member& member) {
   return member.kind != Rex::MemberKind::key && member.kind != Rex::MemberKind::scalar &&
          member.kind != Rex::MemberKind::pointer;
}

bool hasKey(const Rex::Member& member, const Rex::Entity& entity, const std::string& key) {
   if (member.child(entity, key)) return true;
   auto keys = member.keys(entity);
   return std::find(keys.begin(), keys.end(), key) != keys.end();
}

void copyAttributes(const Rex::Entity& from, Rex::Entity& to) {
   for (const auto& member : from.entityType().members()) {
      if (member->kind == Rex::MemberKind::key) continue;
      member->decode(member->toJson(from), member->name)(to);
   }
}

bool beginsWith(const Steps& steps, const Steps& first) {
   return steps.size() >= first.size() && std::equal(first.begin(), first.end(), steps.begin());
}

}  // namespace

unsigned ApiChanges::add(const Change& change) {
   if (change.steps.size() > maxSteps) nothingAt(change.steps);
   if (change.method == "PATCH") return patch(change);
   if (change.method == "PUT") return put(change);
   if (change.method == "DELETE") return remove(change);
   throw ApiError(400, "method: expected PATCH, PUT or DELETE, got " + inQuotes(change.method),
                  "method");
}

void ApiChanges::apply() {
   for (const auto& write : writes_) write();
   writes_.clear();
   rows_.clear();
   rowCounts_.clear();
}

unsigned ApiChanges::patch(const Change& change) {
   RowPtr row = find(change.steps);
   if (!row) nothingAt(change.steps);
   requireWritable(row->root);
   auto write = checked(*row->type, change.body);
   rules_.check(change.steps, *row->type, change.body);
   writeRow(row, change.steps, write);
   return 204;
}

void ApiChanges::writeRow(const RowPtr& row, const Steps& steps, const Rex::Member::Write& write) {
   if (!ApiAccess::isReplacedAsWhole(*row->type)) {
      writes_.push_back([row, write] { write(*row->entity); });
      return;
   }
   rows_[steps] = row;  // later changes of these find the new one
   writes_.push_back([row, at = place(steps), write] {
      Rex::Dispatcher::run([&] {
         auto before = row->entity;
         at.member->removeKey(*at.holder->entity, at.key);
         row->entity = at.member->makeChild(*at.holder->entity, at.key);
         copyAttributes(*before, *row->entity);
         write(*row->entity);
      });
   });
}

unsigned ApiChanges::put(const Change& change) {
   Place to = place(change.steps);
   if (find(change.steps)) return patch(change);
   requireWritable(to.holder->root);
   if (std::string fault = keyFault(*to.member, to.key); !fault.empty()) {
      throw ApiError(400, "key of " + to.member->name + ": " + fault, to.member->name);
   }
   size_t& rows = rowsOf(change.steps, to);
   if (size_t most = mostRows(*to.member); rows >= most) {
      throw ApiError(400,
                     to.member->name + ": expected at most " + std::to_string(most) +
                         " rows; remove one before another is made",
                     to.member->name);
   }
   if (to.holder->type == &Rex::Dir::staticType()) {
      makeEntry(change, to);
   } else {
      make(change, to);
   }
   ++rows;
   return 201;
}

void ApiChanges::make(const Change& change, const Place& place) {
   const Rex::EntityType* type = place.member->madeType();
   if (!type) {
      throw ApiError(405, "members of " + place.member->name + " are not made here", {},
                     "GET, DELETE");
   }
   auto write = checked(*type, change.body);
   rules_.check(change.steps, *type, change.body);
   auto row = std::make_shared<Row>(Row{nullptr, type, place.holder->root});
   rows_[change.steps] = row;
   // As one reaction, so that the new row is filled before its key is reported.
   writes_.push_back([row, place, write] {
      Rex::Dispatcher::run([&] {
         row->entity = place.member->makeChild(*place.holder->entity, place.key);
         write(*row->entity);
      });
   });
}

void ApiChanges::makeEntry(const Change& change, const Place& place) {
   std::string known(ApiAccess::entryType(place.holder->root));
   std::string name = change.type.empty() ? known : change.type;
   if (!known.empty() && name != known) {
      throw ApiError(400, "type: expected " + known + ", got " + inQuotes(name));
   }
   const Rex::EntityType* type = Rex::EntityType::find(name);
   auto made = type ? type->create() : nullptr;
   if (!made) {
      throw ApiError(400,
                     "type: expected the name of an entity type that can stand in a directory, "
                     "got " +
                         inQuotes(name));
   }
   checked(*type, change.body)(*made);
   rows_[change.steps] = std::make_shared<Row>(Row{made, type, place.holder->root});
   writes_.push_back([place, made] {
      static_cast<Rex::Dir&>(*place.holder->entity).entityPtrIs(Rex::String(place.key), made);
   });
}

unsigned ApiChanges::remove(const Change& change) {
   const Steps& steps = change.steps;
   RowPtr row = steps.empty() ? nullptr : find(above(steps));
   const Rex::Member* member =
       row && row->type != &Rex::Dir::staticType() ? row->type->member(steps.back()) : nullptr;
   if (member) {
      restoreDefault(row, *member, above(steps));
   } else {
      removeMember(change);
   }
   return 204;
}

void ApiChanges::restoreDefault(const RowPtr& row, const Rex::Member& member, const Steps& steps) {
   requireWritable(row->root);
   auto standard = member.kind == Rex::MemberKind::scalar ? fresh(steps) : nullptr;
   ApiError none(405, member.name + " has no default", {}, "GET");
   if (!standard) throw none;
   try {
      auto write = member.decode(member.toJson(*standard), member.name);
      writes_.push_back([row, write] { write(*row->entity); });
   } catch (const Rex::JsonError&) {
      // Some start out as what nobody may write, such as an identifier of no kind.
      throw none;
   }
}

void ApiChanges::removeMember(const Change& change) {
   Place from = place(change.steps);
   requireWritable(from.holder->root);
   auto row = rows_.find(change.steps);
   bool stands = row != rows_.end()
                     ? row->second != nullptr
                     : from.holder->entity && hasKey(*from.member, *from.holder->entity, from.key);
   if (!stands) nothingAt(change.steps);
   --rowsOf(change.steps, from);
   auto gone = rows_.lower_bound(change.steps);
   while (gone != rows_.end() && beginsWith(gone->first, change.steps)) gone = rows_.erase(gone);
   auto counted = rowCounts_.lower_bound(change.steps);
   while (counted != rowCounts_.end() && beginsWith(counted->first, change.steps)) {
      counted = rowCounts_.erase(counted);
   }
   rows_[change.steps] = nullptr;
   rules_.rowGoes(change.steps);
   bool entry = from.holder->type == &Rex::Dir::staticType();
   writeRow(from.holder, above(change.steps, entry ? 1 : 2),
            [from](Rex::Entity& holder) { from.member->removeKey(holder, from.key); });
}

// How many rows the collection around a row has, those counted that earlier changes make.
size_t& ApiChanges::rowsOf(const Steps& steps, const Place& place) {
   auto [at, first] = rowCounts_.try_emplace(above(steps), 0);
   if (first && place.holder->entity) {
      at->second = place.member->keys(*place.holder->entity).size();
   }
   return at->second;
}

// What an earlier change makes has no members but those that earlier changes make too.
ApiChanges::RowPtr ApiChanges::find(const Steps& steps) const {
   for (size_t last = 0; last < steps.size(); ++last) {
      auto at = rows_.find(above(steps, last));
      if (at != rows_.end()) return last == 0 ? at->second : nullptr;
   }
   auto found = entityManager_.find(steps);
   if (!found) return nullptr;
   return std::make_shared<Row>(Row{found.entity, &found.entity->entityType(), found.root});
}

ApiChanges::Place ApiChanges::place(const Steps& steps) const {
   if (steps.empty()) nothingAt(steps);
   RowPtr dir = find(above(steps));
   if (dir && dir->type == &Rex::Dir::staticType()) {
      return {dir, dir->type->member("entityPtr"), steps.back()};
   }
   RowPtr holder = steps.size() > 1 ? find(above(steps, 2)) : nullptr;
   const Rex::Member* member = holder ? holder->type->member(steps[steps.size() - 2]) : nullptr;
   if (member && isCollection(*member)) return {holder, member, steps.back()};
   if (!find(steps)) nothingAt(steps);
   throw ApiError(405, "'" + Statestore::encodePath(steps) + "' is no member of a collection", {},
                  "GET, PATCH");
}

// An entity as that of these steps was when it was made; null where it cannot be told.
Rex::Ptr<Rex::Entity> ApiChanges::fresh(const Steps& steps) const {
   RowPtr row = find(steps);
   if (!row) return nullptr;
   if (auto made = row->type->create()) return made;
   // One with a key is made by its holder alone.
   auto holder = steps.size() > 2 ? fresh(above(steps, 2)) : nullptr;
   const Rex::Member* member =
       holder ? holder->entityType().member(steps[steps.size() - 2]) : nullptr;
   return member ? member->makeChild(*holder, steps.back()) : nullptr;
}

void ApiChanges::requireWritable(const std::string& root) const {
   std::string words = access_.refusal(root);
   if (!words.empty()) throw ApiError(403, words);
}

}  // namespace Host
