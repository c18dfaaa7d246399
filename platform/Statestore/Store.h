// A state store outside the process, as one client of it sees it. It holds rows and a list of the
// changes that were made to them; docs/state-store.md gives the grammar of both.
//
// Every call returns at once. Its answer comes from the loop, never from inside the call, and never
// after handleDown(): what was asked before that and not answered will not be, and a change among
// it may have been made or not.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace Statestore {

// One step of a change.
struct Operation {
   enum class Kind {
      set,     // writes a field of a row; void when there is no such row
      make,    // makes the row of `field` below `row`, empty, in place of one that stands there;
               // `value` is its type. Void when there is no row `row`. An empty `row` makes a
               // root, never in place of one that stands: see ChangeResult::rootStands
      remove,  // removes a field of a row, and with a row's field that row and all below it
   };
   Kind kind;
   std::string row;    // path of the row
   std::string field;  // attribute, or member and key
   std::string value;  // JSON
   bool operator==(const Operation&) const = default;
};
using Operations = std::vector<Operation>;

// What a writer changed at a time: seen by all clients as a whole, or not at all.
struct Change {
   std::string id;         // its place among all changes
   std::string writer;     // who made it
   uint64_t number = 0;    // the writer's own count
   Operations operations;  // those that were not void, in the writer's order
};

struct Row {
   std::string path;
   std::string type;
   std::vector<std::pair<std::string, std::string>> fields;  // and their JSON
};

// Rows as they stood at a moment.
struct Snapshot {
   std::string life;       // of the store: another one after it was emptied
   std::string last;       // id of the last change in it
   std::vector<Row> rows;  // holders before what they hold
};

enum class ChangeResult {
   made,
   otherLife,   // the store was emptied since; nothing was changed
   rootStands,  // a root that the change makes stands already, for another client was first. It is
                // to be loaded; nothing was changed
   refused,     // by a store that has no memory left, or is read-only; nothing was changed
};

// Who is told what the store does of itself.
class StoreClient {
 public:
   virtual ~StoreClient() = default;
   // Calls are answered from now on.
   virtual void handleUp() = 0;
   virtual void handleDown() = 0;
   // There are changes to read, or were.
   virtual void handleNews() = 0;
   // Somebody emptied the store.
   virtual void handleEmptied() = 0;
};

class Store {
 public:
   virtual ~Store() = default;

   // Begins to connect, and goes on until the end; once.
   virtual void start(StoreClient& client) = 0;

   // The rows of the named roots and all below them. A root that does not stand has none.
   virtual void load(const std::vector<std::string>& roots,
                     std::function<void(Snapshot)> answer) = 0;

   // Changes behind the one named `after` in the same life, in order, as many as the store gives at
   // a time; none when there are none. Nothing when the list does not reach back to `after`.
   virtual void read(const std::string& life, const std::string& after,
                     std::function<void(std::optional<std::vector<Change>>)> answer) = 0;

   virtual void change(const std::string& life, const std::string& writer, uint64_t number,
                       const Operations& operations, std::function<void(ChangeResult)> answer) = 0;
};

}  // namespace Statestore
