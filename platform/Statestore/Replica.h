// Has the tree of this process and a store outside it be the same: sends what is changed here, and
// applies what others change. docs/replication.md tells what is promised.
#pragma once

#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "Rex/Context.h"
#include "Rex/Owned.h"
#include "Rex/Timer.h"
#include "Statestore/ChangeReader.h"
#include "Statestore/RowWriter.h"
#include "Statestore/Store.h"
#include "Statestore/Tree.h"

namespace Statestore {

class Replica : private StoreClient {
 public:
   // Of the present context's tree, in which nobody has written yet. `writer` is a text that no
   // other process has, nor this one had when it ran before. The store outlives the replica.
   Replica(Store& store, std::string writer);
   ~Replica();

   // Calls `then`, as a handler, when what the store holds at these paths, or at the roots that
   // they lie below, was read: at once, or however late that is. With false when an entity of
   // another type stands at one of them in the store; it then is not replicated.
   void loaded(const std::vector<std::string>& paths, std::function<void(bool ofTheirTypes)> then);

   // What each change from here on requires of the store (Operation::Kind::require): while it is
   // not so nothing goes out, but for a change that itself makes it so. Once that is in the store,
   // it is for the store to say, also after a gap. Nothing is required without one.
   void guardIs(std::optional<Operation> guard);

   // A root at which the same goes for all that this process writes: who has which role is not to
   // be said again by one that was away.
   void yieldAt(const std::string& path);

   // For a process that loses its role: sends what is pending, if the guard lets it, and nothing
   // that is changed later; and applies nothing more.
   void freeze();
   // Sends nothing more at all, and applies nothing more.
   void detach();

   // Whether all is sent and nothing is left to be read, as far as is known here.
   bool idle() const;
   // What was refused of what others have in the store.
   uint64_t refused() const { return treeWriter_.refused(); }

   // Called by the tree.
   void rootIs(const std::string& path, const Rex::Ptr<Rex::Entity>& entity);
   void unwrittenIs(const Rex::Entity& entity) { table_.unwrittenIs(entity); }

 private:
   struct Root {
      Rex::OwnedMachine<RowSm> row;
      bool otherType = false;
   };
   struct Waiter {
      std::vector<std::string> roots;
      std::function<void(bool)> then;
   };

   void handleUp() override;
   void handleDown() override;
   void handleNews() override;
   void handleEmptied() override;

   // Asks the store for what comes next; one request at a time.
   void step();
   void load();
   void handleLoaded(const std::vector<std::string>& paths, bool all, Snapshot snapshot);
   void reconcile(const std::vector<std::string>& paths, const RowImages& images, bool restore);
   std::set<References::PlaceName> takeUnsent();
   void read();
   void handleRead(std::optional<std::vector<Change>> changes);
   void apply(const Change& change);
   void send();
   bool isOwnWord(const Operation& guard) const;
   Operations guarded(const Operations& operations) const;
   void yield();
   void stepFrozen();
   void letGo();
   void handleSent(ChangeResult result);
   void handleNote();
   void tellWaiters();
   std::vector<std::string> rootPaths(bool unreadOnly) const;

   Rex::Context& context_;
   Tree& tree_;
   Store& store_;
   const std::string writer_;

   RowTable table_;
   TreeWriter treeWriter_;
   ChangeReader changeReader_;
   RowWriter rowWriter_;
   std::map<std::string, Root> roots_;  // by row's path
   std::vector<Waiter> waiters_;

   bool detached_ = false;
   bool frozen_ = false;
   Operations rest_;  // of a frozen process
   std::optional<Operation> guard_;
   std::set<std::string> yields_;
   bool up_ = false;
   bool busy_ = false;      // a request is not answered
   bool reload_ = false;    // the list of changes does not tell what happened
   bool restores_ = false;  // an emptied store does not have again all that is here
   bool news_ = false;
   std::string life_, last_;  // of the store, and of the last change that was read
   uint64_t number_ = 0;      // of this process's last change
   std::optional<Flight> flight_;
   double retryAfter_ = 0;  // seconds
   Rex::Timer turn_;
   Rex::Timer retry_;
};

}  // namespace Statestore
