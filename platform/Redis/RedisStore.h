// The state store in a Redis server: two connections that stand and fall together, one for requests
// and one that hears of news. docs/state-store.md has the protocol.
#pragma once

#include <cstdint>
#include <memory>
#include <random>

#include "Redis/Connection.h"
#include "Redis/StoreLog.h"
#include "Redis/StoreUrl.h"
#include "Statestore/Store.h"

namespace Redis {

class RedisStore : public Statestore::Store {
 public:
   static constexpr double mostSilence = 10;  // seconds, of a server that was asked something
   static constexpr double firstRetry = 0.1;  // seconds; doubled each time up to the longest
   static constexpr double longestRetry = 5;

   // `url` is resolved. `seed` spreads the retries of several clients.
   RedisStore(Rex::Loop& loop, StoreUrl url, uint32_t seed);

   void start(Statestore::StoreClient& client) override;
   void load(const std::vector<std::string>& roots,
             std::function<void(Statestore::Snapshot)> answer) override;
   void read(const std::string& life, const std::string& after,
             std::function<void(std::optional<std::vector<Statestore::Change>>)> answer) override;
   void change(const std::string& life, const std::string& writer, uint64_t number,
               const Statestore::Operations& operations,
               std::function<void(Statestore::ChangeResult)> answer) override;

   bool up() const { return up_; }
   // Entries of the list that were no change, and were passed over.
   uint64_t malformedEntries() const { return malformedEntries_; }

 private:
   using Next = std::function<void(const redisReply& reply)>;

   void connect();
   void logIn(Connection& connection);
   void listen();
   void track(const std::string& listener);
   void handleUp();
   void handleMessage(const redisReply& message);
   void checkLife();

   void request(const Script& script, const Words& arguments, Next next);
   Next unlessError(Next next);
   void handleGood();
   void breakOff(const std::string& why);

   Rex::Loop& loop_;
   const StoreUrl url_;
   StoreLog log_;
   std::minstd_rand random_;
   Statestore::StoreClient* client_ = nullptr;
   std::unique_ptr<Connection> requests_;
   std::unique_ptr<Connection> news_;
   Rex::Timer turn_;  // until the next attempt, or the end of this one
   double retry_ = firstRetry;
   bool up_ = false;
   int subscribed_ = 0;  // channels confirmed
   std::string life_;    // as last loaded; empty when the client knows of its end
   uint64_t malformedEntries_ = 0;
};

}  // namespace Redis
