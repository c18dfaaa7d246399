// Rows of the store as they stand at a moment, read in pieces, so that the server has time for
// others in between. What was changed meanwhile is read behind that and done to the rows.
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <unordered_set>
#include <vector>

#include "Redis/Connection.h"
#include "Redis/Replies.h"
#include "Statestore/Store.h"

namespace Redis {

class Loading : public std::enable_shared_from_this<Loading> {
 public:
   using Answer = std::function<void(Statestore::Snapshot)>;
   using Broken = std::function<void(const std::string&)>;

   // `connection` keeps it until it is done or the connection goes. `candidate`: the life for a
   // store that has none. Either `answer` or `broken` is called once.
   static void begin(Connection& connection, std::string candidate, std::vector<std::string> roots,
                     Answer answer, Broken broken);

 private:
   Loading(Connection& connection, std::string candidate, std::vector<std::string> roots,
           Answer answer, Broken broken);

   void start();
   void walk();
   void ask(const std::string& path);
   void handleRow(std::string path, const redisReply& reply);
   void readChanges();
   void replay(const std::vector<Statestore::Change>& changes);
   bool holds(const std::string& path) const;

   using Handler = void (Loading::*)(const redisReply&);
   Connection::Answer then(Handler handler);
   void handleLife(const redisReply& reply);
   void handleNewest(const redisReply& reply);
   void handleChanges(const redisReply& reply);

   Connection& connection_;
   const std::string candidate_;
   const std::vector<std::string> roots_;
   const Answer answer_;
   const Broken broken_;

   Statestore::Snapshot snapshot_;
   std::string newest_;                     // the change that was last after all rows were read
   std::vector<std::string> waiting_;       // paths of rows to be asked for, the next one last
   std::unordered_set<std::string> known_;  // all that were ever put there
   size_t asked_ = 0;                       // and not answered
};

}  // namespace Redis
