// The rows of a replica by path and by entity, and what its parts have in common.
#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>

#include "Statestore/Applying.h"
#include "Statestore/Pending.h"
#include "Statestore/References.h"
#include "Statestore/RowSm.h"

namespace Statestore {

class RowTable {
 public:
   // The row at a path, and of an entity; null where none stands.
   RowSm* at(const std::string& path) const;
   RowSm* of(const Rex::Entity* entity) const;
   size_t size() const { return byPath_.size(); }

   // Called by the rows.
   void rowIs(RowSm& row);
   void rowDel(RowSm& row);
   void note(RowSm& row, const Rex::Member& member, const Rex::AnyKey& key);
   // Whether what stands at a place of a row is a row below it; else it lives elsewhere.
   bool owns(const RowSm& row, const Rex::Member& member, const Rex::Entity& target) const;

   // An entity that was made for somebody who asked for its path, and wrote nothing.
   void unwrittenIs(const Rex::Entity& entity) { unwritten_.insert(&entity); }
   bool takeUnwritten(const Rex::Entity& entity) { return unwritten_.erase(&entity); }

   Pending pending;
   Applying applying;
   References references;
   std::function<void()> onNote;  // something is pending

 private:
   std::unordered_map<std::string_view, RowSm*> byPath_;
   std::unordered_map<const Rex::Entity*, RowSm*> byEntity_;
   std::unordered_set<const Rex::Entity*> unwritten_;
};

}  // namespace Statestore
