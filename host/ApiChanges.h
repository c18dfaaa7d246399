// Changes of entities that a request asks for. Each is checked as if those before it had been made;
// when all are good they are made, one by one.
#pragma once

#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "Rex/EntityType.h"
#include "Statestore/EntityManager.h"
#include "host/ApiAccess.h"
#include "host/ApiRules.h"

namespace Host {

class ApiChanges {
 public:
   struct Change {
      std::string method;  // "PATCH", "PUT" or "DELETE"
      Statestore::Steps steps;
      std::string type;  // of a directory's new entry; empty: the one that belongs there
      Rex::Json body = Rex::Json::object();
   };

   ApiChanges(Statestore::EntityManager& entityManager, const ApiAccess& access)
       : entityManager_(entityManager), access_(access), rules_(entityManager) {}

   // Checks one more change and notes what makes it. Returns the status of its answer. Throws
   // ApiError.
   unsigned add(const Change& change);
   // Makes them all, and cannot fail. The caller has to stand outside any handler: each change is
   // then dispatched to its end before the next is made.
   void apply();

 private:
   // An entity that stands, or that one of the changes makes.
   struct Row {
      Rex::Ptr<Rex::Entity> entity;  // null until it is made
      const Rex::EntityType* type;
      std::string root;  // path of the store that it stands at or below
   };
   using RowPtr = std::shared_ptr<Row>;

   // A member of a collection, whether it stands or not.
   struct Place {
      RowPtr holder;
      const Rex::Member* member = nullptr;
      std::string key;
   };

   unsigned patch(const Change& change);
   unsigned put(const Change& change);
   unsigned remove(const Change& change);
   void writeRow(const RowPtr& row, const Statestore::Steps& steps,
                 const Rex::Member::Write& write);
   void make(const Change& change, const Place& place);
   void makeEntry(const Change& change, const Place& place);
   void removeMember(const Change& change);
   void restoreDefault(const RowPtr& row, const Rex::Member& member,
                       const Statestore::Steps& steps);

   size_t& rowsOf(const Statestore::Steps& steps, const Place& place);
   RowPtr find(const Statestore::Steps& steps) const;
   Place place(const Statestore::Steps& steps) const;
   Rex::Ptr<Rex::Entity> fresh(const Statestore::Steps& steps) const;
   void requireWritable(const std::string& root) const;

   Statestore::EntityManager& entityManager_;
   const ApiAccess& access_;
   std::map<Statestore::Steps, RowPtr> rows_;       // made by these changes; null: removed by them
   std::map<Statestore::Steps, size_t> rowCounts_;  // of collections, with these changes
   ApiRules rules_;
   std::vector<std::function<void()>> writes_;
};

}  // namespace Host
