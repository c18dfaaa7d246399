// Watches one entity of the tree for the replica, and with a machine of its own each that it owns:
// what changes is noted, to be sent. Each such entity is a row of the store.
#pragma once

#include <string>

#include "Rex/EntityType.h"
#include "Rex/Owned.h"
#include "Rex/StateMachine.h"

namespace Statestore {

class RowTable;

class RowSm : public Rex::StateMachine {
 public:
   enum class State {
      unwritten,  // in the store nobody made it, and here nobody wrote it: all is as it was made
      fresh,      // made here; goes out whole
      standing,   // in the store, or on its way there
   };

   // `path` is the row's, encoded; `holder` is null for a root.
   RowSm(RowTable& table, Rex::Ptr<Rex::Entity> entity, RowSm* holder, std::string path,
         State state);

   const Rex::Ptr<Rex::Entity>& entity() const { return entity_; }
   const std::string& path() const { return path_; }
   RowSm* holder() const { return holder_; }
   const RowSm& root() const { return holder_ ? holder_->root() : *this; }
   // Under which the holder's row has it; all of a root's path.
   std::string_view field() const;
   RowSm* child(std::string_view field) const { return children_.get(Rex::String(field)).get(); }
   const Rex::HashMap<Rex::String, Rex::Ptr<RowSm>>& children() const { return children_.all(); }

   State state() const { return state_; }
   void stateIs(State state) { state_ = state; }
   // Of this row and of all below it.
   void allStatesIs(State state);

   // For roots: what the store holds was read. Before that nothing is noted.
   bool loaded() const { return loaded_; }
   void loadedIs(bool loaded) { loaded_ = loaded; }
   // The id of the last change that was in what was read; empty when changes are read as far.
   const std::string& ahead() const { return ahead_; }
   void aheadIs(const std::string& ahead) { ahead_ = ahead; }
   // Whether the changes that are read now are news.
   bool isRead() const { return loaded_ && ahead_.empty(); }

   // Whether this process was the last to write a member, and any. In a row that it made it wrote
   // what is not as the type has it.
   bool authored(const Rex::Member& member) const;
   bool authored() const { return authored_; }
   void authoredIs(const Rex::Member& member, bool authored);
   void authoredNothing() { authored_ = 0; }

 private:
   void handleInitialized();
   void handleAny(const Rex::Change& change);
   // Has the row stand that a place owns, or go; a new one is `fresh` as a rule. False when nothing
   // came or went that anybody wrote.
   bool follow(const Rex::Member& member, const std::string& key, State fresh);
   // Whether a member is as it is when an entity of the type is made.
   bool isDefault(const Rex::Member& member) const;
   void doClose() override;
   // As for the bits of what is watched: few members share one.
   static uint64_t bit(const Rex::Member& member) { return uint64_t{1} << (member.id & 63); }

   RowTable& table_;
   Rex::Ptr<Rex::Entity> entity_;
   RowSm* const holder_;
   const std::string path_;
   State state_;
   bool loaded_ = false;
   std::string ahead_;
   uint64_t authored_ = 0;  // all of a row that was made here, until others write
   uint64_t changed_ = 0;   // written here since the row stands
   Rex::OwnedMachines<RowSm, Rex::String> children_;  // by field
};

}  // namespace Statestore
