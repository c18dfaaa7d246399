// A state store in memory, and the connections of several clients to it: what each asks, is
// answered and is told of comes when the test lets it, in order for one client, in any order among
// them.
#pragma once

#include <deque>
#include <list>
#include <map>
#include <memory>
#include <random>
#include <string>

#include "Statestore/Store.h"

namespace LldpTest {

class SimulatedStore {
 public:
   class Client : public Statestore::Store {
    public:
      explicit Client(SimulatedStore& store) : store_(store) {}
      void start(Statestore::StoreClient& client) override { client_ = &client; }
      void load(const std::vector<std::string>& roots,
                std::function<void(Statestore::Snapshot)> answer) override;
      void read(
          const std::string& life, const std::string& after,
          std::function<void(std::optional<std::vector<Statestore::Change>>)> answer) override;
      void change(const std::string& life, const std::string& writer, uint64_t number,
                  const Statestore::Operations& operations,
                  std::function<void(Statestore::ChangeResult)> answer) override;

      bool up() const { return up_; }
      void connect();
      // The connection goes. What was asked is done all the same, or not; no answer comes.
      void cut(bool done);
      // Lets the store do what was asked first, or the client hear what it was told first. Whether
      // there was any.
      bool serve();
      bool hear();
      // Ends for good: the client is gone.
      void leave();

      // What is asked, or what it is told, stays on its way.
      bool askedWaits = false, toldWaits = false;

      std::string name;
      size_t changes = 0;     // that it asked for
      size_t operations = 0;  // in them

    private:
      friend class SimulatedStore;
      SimulatedStore& store_;
      Statestore::StoreClient* client_ = nullptr;
      bool up_ = false;
      std::deque<std::function<void()>> asked_, told_;
   };

   explicit SimulatedStore(unsigned seed = 1) : random_(seed) {}

   Client& client() { return clients_.emplace_back(*this); }

   // Serves and hears in an order of the seed's until nothing is left.
   void settle();
   // One step of that; false when nothing was left.
   bool step();
   // Everything goes, and every client that is up is told.
   void empty();
   // Only the newest changes stay in the list.
   void trim(size_t stay);
   // Sees each change that is made before it is: the rows are as they were.
   std::function<void(const Statestore::Change& change)> witness;
   bool refuses = false;  // every change
   size_t piece = 500;    // most changes in an answer

   using Fields = std::map<std::string, std::string>;
   struct Row {
      std::string type;
      Fields fields;
      bool operator==(const Row&) const = default;
   };
   // What a server keeps in its file, and a restart with it, while no client is up.
   struct Kept {
      std::map<std::string, Row> rows;
      std::deque<Statestore::Change> changes;
      std::string life;
   };
   Kept kept() const { return {rows_, changes_, life_}; }
   void restart(Kept kept);

   const std::map<std::string, Row>& rows() const { return rows_; }
   const std::deque<Statestore::Change>& changes() const { return changes_; }

 private:
   Statestore::Snapshot snapshot(const std::vector<std::string>& roots);
   bool apply(const Statestore::Operation& operation);
   bool meets(const Statestore::Operation& operation) const;
   void wipe(const std::string& path);
   void add(Statestore::Change change);
   void born();

   std::mt19937 random_;
   std::map<std::string, Row> rows_;
   std::deque<Statestore::Change> changes_;
   std::string life_;
   uint64_t lives_ = 0, ids_ = 0;
   std::list<Client> clients_;
};

}  // namespace LldpTest
