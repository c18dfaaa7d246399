// The embedded state database: entities by path, inside the process. Whoever asks first for a path
// makes the entity that stands there; everybody else finds it.
#pragma once

#include <functional>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "Rex/Entity.h"
#include "Statestore/Path.h"

namespace Statestore {

class Replica;

// What stands at a path or below it.
struct Found {
   Rex::Ptr<Rex::Entity> entity;  // null: the steps lead nowhere
   std::string root;              // the path that `entity` stands at or below
   explicit operator bool() const { return bool(entity); }
};

class Tree {
 public:
   // The entity at `path`: the one that stands, or else a new one of the named type. Below a
   // directory that stands in the tree the new one becomes its entry. Null when the type is not
   // known, is only made by a holder, or differs from that of the entity that stands.
   Rex::Ptr<Rex::Entity> entityIs(std::string_view path, std::string_view typeName);
   // The entity that `steps` lead to: the longest path of the tree, then entry names of
   // directories, members and keys.
   Found find(const Steps& steps) const;
   // All paths of the tree in order; entries of directories are not paths of their own.
   std::vector<std::string> paths() const;

   // What follows this tree in a store outside the process; null when the tree is all there is.
   Replica* replica() const { return replica_; }
   void replicaIs(Replica* replica) { replica_ = replica; }

 private:
   Replica* replica_ = nullptr;
   std::map<std::string, Rex::Ptr<Rex::Entity>, std::less<>> entities_;
};

}  // namespace Statestore
