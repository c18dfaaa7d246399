// A client of a state store in Redis, on a loop of a test's own.
#pragma once

#include <gtest/gtest.h>
#include <sys/epoll.h>
#include <sys/timerfd.h>
#include <unistd.h>

#include <csignal>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "Redis/RedisStore.h"
#include "Rex/Loop.h"
#include "support/TestContext.h"

namespace LldpTest {

// Runs a loop until something has come about. The time of the machines stands still meanwhile.
class Waiting {
 public:
   Waiting(Rex::Loop& loop, TestContext& test) : loop_(loop), test_(test) {
      signal(SIGPIPE, SIG_IGN);
   }
   bool until(const std::function<bool()>& done) {
      int tick = timerfd_create(CLOCK_MONOTONIC, TFD_CLOEXEC);
      itimerspec each{{0, 2'000'000}, {0, 2'000'000}};
      timerfd_settime(tick, 0, &each, nullptr);
      int left = 5000;
      loop_.descriptorIs(tick, EPOLLIN, [&](uint32_t) {
         uint64_t ticks = 0;
         if (::read(tick, &ticks, sizeof(ticks)) > 0) left -= static_cast<int>(ticks);
         if (left <= 0 || done()) loop_.stop();
      });
      loop_.run(test_.context());
      loop_.descriptorDel(tick);
      close(tick);
      return left > 0;
   }

 private:
   Rex::Loop& loop_;
   TestContext& test_;
};

// The store, and what it told its client, as words in order.
class RedisClient : public Statestore::StoreClient {
 public:
   RedisClient(TestContext& test, Rex::Loop& loop, const std::string& url)
       : waiting_(loop, test), store(loop, Redis::StoreUrl::parse(url).resolved(), 1) {}

   void handleUp() override { heard("up"); }
   void handleDown() override { heard("down"); }
   void handleNews() override { heard("news"); }
   void handleEmptied() override { heard("emptied"); }

   // Whether it was told that since the last call; waits for it.
   bool hears(const std::string& word) {
      bool heard =
          waiting_.until([&] { return told_.find(" " + word + " ") != std::string::npos; });
      told_ = " ";
      return heard;
   }
   bool connect() {
      store.start(*this);
      return hears("up");
   }
   bool until(const std::function<bool()>& done) { return waiting_.until(done); }

   // Answers that are waited for; a default one when none came.
   Statestore::Snapshot load(const std::vector<std::string>& roots) {
      std::optional<Statestore::Snapshot> got;
      store.load(roots, [&got](Statestore::Snapshot snapshot) { got = std::move(snapshot); });
      EXPECT_TRUE(until([&] { return got.has_value(); }));
      life = got.value_or(Statestore::Snapshot()).life;
      return got.value_or(Statestore::Snapshot());
   }
   std::optional<std::vector<Statestore::Change>> read(const std::string& after) {
      std::optional<std::optional<std::vector<Statestore::Change>>> got;
      store.read(life, after, [&got](auto changes) { got = std::move(changes); });
      EXPECT_TRUE(until([&] { return got.has_value(); }));
      return got.value_or(std::nullopt);
   }
   std::optional<Statestore::ChangeResult> change(const Statestore::Operations& operations) {
      std::optional<Statestore::ChangeResult> got;
      store.change(life, "me", ++number, operations, [&got](auto result) { got = result; });
      EXPECT_TRUE(until([&] { return got.has_value(); }));
      return got;
   }

 private:
   void heard(const std::string& word) { told_ += word + " "; }

   Waiting waiting_;
   std::string told_ = " ";

 public:
   Redis::RedisStore store;
   std::string life;
   uint64_t number = 0;
};

}  // namespace LldpTest
