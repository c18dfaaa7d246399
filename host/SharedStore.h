// The state store that this process shares with others: has the tree of the present context follow
// it, and is followed by it.
#pragma once

#include <optional>
#include <string>
#include <utility>

#include "Redis/RedisStore.h"
#include "Rex/Context.h"
#include "Rex/Loop.h"
#include "Statestore/EntityManager.h"
#include "Statestore/Replica.h"

namespace Host {

class SharedStore {
 public:
   // Begins to connect. Nobody may have written into the tree yet. Throws StartError when the URL's
   // host has no address.
   SharedStore(Rex::Loop& loop, Rex::Context& context, const Redis::StoreUrl& url);

   // Makes every known entity, and runs the loop until what the store holds of them was read, or
   // something else stopped the loop; false then. Throws StartError when the store has something
   // else where agents have their state. Called once.
   bool load(Statestore::EntityManager& manager);

   // What the store has to say for anything of this process to go out (writeGuard()).
   void guardIs(std::optional<Statestore::Operation> guard) { replica_.guardIs(std::move(guard)); }
   // The role is lost: what was changed until now still goes out, if the store lets it, and nothing
   // after that; and nothing comes in.
   void freeze() { replica_.freeze(); }
   // For a process that is to end: runs the loop until all that was written is in the store, but no
   // longer than two seconds. Returns whether it is.
   bool flush();
   // Whether the store answers.
   bool isUp() const { return store_.up(); }

   // The URL without its password, and whether the store answers.
   Rex::Json describe() const;

 private:
   Rex::Loop& loop_;
   Rex::Context& context_;
   const std::string text_;
   Redis::RedisStore store_;
   Statestore::Replica replica_;
   std::optional<bool> loaded_;  // and of the expected types
};

}  // namespace Host
