// The rows of one kind that interfaces have: those of this supervisor, which a feeder makes, and in
// a chassis those of the other one. The agent's own directory points to both. Where both have an
// interface of a name the own one counts: it is the device that this process can open.
#pragma once

#include <map>
#include <string>
#include <utility>

#include "Rex/Dir.h"
#include "Rex/Owned.h"
#include "Rex/StateMachine.h"
#include "Statestore/Cell.h"
#include "Wirekit/IntfId.h"
#include "host/Feeders/FedEntity.h"
#include "host/Settings.h"

namespace Host {

// How a directory of the agent takes a row.
template <class Dir, class Row>
void rowIs(Dir& dir, const Rex::Ptr<Row>& row) {
   if constexpr (requires { dir.intfConfigIs(row); }) {
      dir.intfConfigIs(row);
   } else {
      dir.intfStatusIs(row);
   }
}
template <class Dir>
void rowDel(Dir& dir, const Wirekit::IntfId& intfId) {
   if constexpr (requires { dir.intfConfigDel(intfId); }) {
      dir.intfConfigDel(intfId);
   } else {
      dir.intfStatusDel(intfId);
   }
}

// Whose rows a directory holds. Those of `both` supervisors stand in the store, where there are
// two; those of `others` alone are for a process that feeds none.
enum class IntfTableOf { own, both, others };

template <class Dir, class Row>
class IntfTable : public Rex::StateMachine {
 public:
   // `path`: of the agent's directory, which no other process sees. `shared`: the name of the
   // directory of each supervisor that others see.
   IntfTable(Statestore::EntityManager& manager, std::string_view path, const char* shared,
             IntfTableOf whose)
       : dir_(localFedEntity<Dir>(manager, path)), whose_(whose) {
      if (whose == IntfTableOf::own) return;
      own_ = fedEntity<Rex::Dir>(manager, Cell::path(shared, 0).view());
      peer_ = fedEntity<Rex::Dir>(manager, Cell::path(shared, 3 - Cell::cellId()).view());
      follow(peer_);
      if (whose == IntfTableOf::others) follow(own_);
   }

   // This supervisor's row, or null.
   Rex::Ptr<Row> row(const Wirekit::IntfId& intfId) const {
      auto at = rows_.find(intfId);
      return at == rows_.end() ? nullptr : at->second;
   }

   // Makes a row, whole before it is reported. One that the process before this one left is taken
   // up again, so that the other supervisor sees what differs, and nothing go and return.
   template <class Fill>
   void rowIs(const Wirekit::IntfId& intfId, const Fill& fill) {
      Rex::Ptr<Row> row = standing(own_, intfId);
      if (!row) row = Rex::make<Row>(intfId);
      fill(*row);
      // In reactions of their own: an entity is never replaced under its key.
      if (standing(peer_, intfId)) Host::rowDel(*dir_, intfId);
      rows_[intfId] = row;
      Host::rowIs(*dir_, row);
      if (own_) own_->entityPtrIs(intfId.stringValue(), row);
   }
   void rowDel(const Wirekit::IntfId& intfId) {
      if (!rows_.erase(intfId)) return;
      if (own_) own_->deleteEntity(intfId.stringValue());
      Host::rowDel(*dir_, intfId);
      if (auto row = standing(peer_, intfId)) Host::rowIs(*dir_, row);
   }

   // Removes what the process before this one left and no feeder made again.
   void sweep() {
      if (!own_) return;
      for (auto [name, entity] : own_->entityPtr()) {
         if (!rows_.contains(Wirekit::IntfId(name))) own_->deleteEntity(name);
      }
   }

 private:
   // Null also for an entry that is something else, or an interface that the agent must not see:
   // the directory is anybody's to write.
   static Rex::Ptr<Row> standing(const Rex::Dir::Ptr& dir, const Wirekit::IntfId& intfId) {
      auto row = dir ? Rex::dynamicPtr<Row>(dir->entityPtr(intfId.stringValue())) : nullptr;
      return row && row->intfId() == intfId && isRanked(intfId) ? row : nullptr;
   }
   void follow(const Rex::Dir::Ptr& shared) {
      on(shared, Rex::Dir::entityPtrAttr, &IntfTable::handleEntry);
      for (auto [name, entity] : shared->entityPtr()) handleEntry(name);
   }
   void handleEntry(const Rex::String& name) {
      Wirekit::IntfId intfId(name);
      if (rows_.contains(intfId)) return;
      Host::rowDel(*dir_, intfId);
      auto row = whose_ == IntfTableOf::others ? standing(own_, intfId) : nullptr;
      if (!row) row = standing(peer_, intfId);
      if (row) Host::rowIs(*dir_, row);
   }

   const typename Dir::Ptr dir_;
   const IntfTableOf whose_;
   Rex::Dir::Ptr own_, peer_;  // null where there is only one supervisor
   std::map<Wirekit::IntfId, Rex::Ptr<Row>> rows_;
};

}  // namespace Host
