// What was changed here and has still to be sent: places of rows, each once, in the order of the
// last writes. So a reader who is told of a change has been told before of all that was written
// before it and not again since.
#pragma once

#include <boost/unordered/unordered_flat_set.hpp>
#include <list>
#include <optional>

#include "Rex/AnyKey.h"
#include "Rex/PoolAllocator.h"
#include "Statestore/RowSm.h"

namespace Statestore {

struct Note {
   Rex::Ptr<RowSm> row;
   const Rex::Member* member;
   Rex::AnyKey key;
};

class Pending {
 public:
   // Puts a place at the end. Allocates nothing for one that is pending already.
   void note(RowSm& row, const Rex::Member& member, const Rex::AnyKey& key);
   // Puts a place that is not pending before all others.
   void noteFirst(RowSm& row, const Rex::Member& member, const Rex::AnyKey& key);
   // The place is pending no more, if it was.
   void drop(const RowSm& row, const Rex::Member& member, const Rex::AnyKey& key);
   bool has(const RowSm& row, const Rex::Member& member, const Rex::AnyKey& key) const;
   // The first, which is pending no more. Nothing of a row that is closed.
   std::optional<Note> take();
   void clear();

   bool empty() const { return notes_.empty(); }
   size_t size() const { return notes_.size(); }
   // A row was closed; now and then what it left goes.
   void handleClosed();

 private:
   using Notes = std::list<Note, Rex::PoolAllocator<Note>>;
   struct Look {
      const RowSm* row;
      const Rex::Member* member;
      const Rex::AnyKey* key;
   };
   static Look look(const Notes::iterator& at) { return {at->row.get(), at->member, &at->key}; }
   static Look look(const Look& look) { return look; }
   struct Hash {
      using is_transparent = void;
      template <class T>
      size_t operator()(const T& of) const {
         Look at = look(of);
         size_t seed = reinterpret_cast<uintptr_t>(at.row);
         boost::hash_combine(seed, reinterpret_cast<uintptr_t>(at.member));
         boost::hash_combine(seed, at.key->hash());
         return seed;
      }
   };
   struct Same {
      using is_transparent = void;
      template <class A, class B>
      bool operator()(const A& of, const B& other) const {
         Look a = look(of), b = look(other);
         return a.row == b.row && a.member == b.member && *a.key == *b.key;
      }
   };

   Notes notes_;
   boost::unordered_flat_set<Notes::iterator, Hash, Same> index_;
   size_t closed_ = 0;  // rows that were closed since the last sweep
};

}  // namespace Statestore
