// The state store in a Redis server: what its scripts do, and how it stands a server's faults.
#include <gmock/gmock.h>

#include <fstream>

#include "support/RedisClient.h"
#include "support/RedisServer.h"

using namespace testing;
using Statestore::Change;
using Statestore::ChangeResult;
using Statestore::Operation;
using Statestore::Operations;
using Statestore::Row;

namespace {

Operation set(const std::string& row, const std::string& field, const std::string& value) {
   return {Operation::Kind::set, row, field, value};
}
Operation make(const std::string& row, const std::string& field, const std::string& type) {
   return {Operation::Kind::make, row, field, type};
}
Operation removal(const std::string& row, const std::string& field) {
   return {Operation::Kind::remove, row, field, ""};
}

// "path type field=value ...", the fields in order.
std::vector<std::string> words(const std::vector<Row>& rows) {
   std::vector<std::string> all;
   for (const Row& row : rows) {
      std::map<std::string, std::string> fields(row.fields.begin(), row.fields.end());
      std::string& text = all.emplace_back(row.path + " " + row.type);
      for (const auto& [field, value] : fields) text.append(" ").append(field + "=" + value);
   }
   return all;
}

struct RedisStoreTest : Test {
   LldpTest::RedisServer server;
   LldpTest::TestContext test;
   Rex::Loop loop;
   LldpTest::RedisClient client{test, loop, "unix:" + server.socket};

   void start(const LldpTest::RedisServer::Words& options = {}) {
      server.start(options);
      ASSERT_TRUE(client.connect());
      client.load({});
   }
   // Lets the retries come; each moves the time that stands meanwhile.
   bool comesUp(LldpTest::RedisClient& who) {
      test.advance(Redis::RedisStore::longestRetry);
      return who.hears("up");
   }
   std::vector<std::string> state(const std::vector<std::string>& roots) {
      return words(client.load(roots).rows);
   }
};

const Operations tree{
    make("", "status", "A::Status"),
    set("status", "text", R"("up::link")"),  // looks like a type's name, and is none
    make("status", "port/1", "A::Port"),
    set("status/port/1", "speed", "100"),
    make("status/port/1", "neighbor/7", "A::Neighbor"),
    set("status/port/1/neighbor/7", "name", R"("x y")"),
};

TEST_F(RedisStoreTest, RowsAreMadeChangedAndRemovedWithAllBelowThem) {
   start();
   EXPECT_EQ(client.change(tree), ChangeResult::made);
   EXPECT_THAT(state({"status", "nothing"}),
               ElementsAre(R"(status A::Status port/1="A::Port" text="up::link")",
                           R"(status/port/1 A::Port neighbor/7="A::Neighbor" speed=100)",
                           R"(status/port/1/neighbor/7 A::Neighbor name="x y")"));
   // In place of what stands there: nothing of the old one is left, also when it comes back.
   client.change({make("status", "port/1", "A::Port")});
   EXPECT_EQ(server.ask({"KEYS", "*neighbor*"}), "[]");
   client.change({make("status/port/1", "neighbor/7", "A::Neighbor")});
   EXPECT_THAT(state({"status/port/1"}),
               ElementsAre(R"(status/port/1 A::Port neighbor/7="A::Neighbor")",
                           "status/port/1/neighbor/7 A::Neighbor"));
   // But a root is not made twice, for two clients may be the first one at once.
   EXPECT_EQ(client.change({removal("status", "text"), make("", "status", "A::Status")}),
             ChangeResult::rootStands);
   EXPECT_THAT(state({"status"}), Contains(HasSubstr("text=")));
   // A value in the place of a row.
   client.change({set("status", "port/1", R"({"path": "other"})")});
   EXPECT_EQ(server.ask({"KEYS", "*port*"}), "[]");
   client.change({removal("", "status")});
   EXPECT_EQ(server.ask({"KEYS", "state:r*"}), "[]");
}

TEST_F(RedisStoreTest, ARootBelowADirectoryIsItsEntryToo) {
   start();
   client.change({make("", "cells", "Rex::Dir"), make("", "cells/1", "A::Cell"),
                  make("cells", "2", "A::Cell")});
   const char* both = R"(cells Rex::Dir 1="A::Cell" 2="A::Cell")";
   EXPECT_THAT(state({"cells/1", "cells"}),
               UnorderedElementsAre(both, "cells/1 A::Cell", "cells/2 A::Cell"));
   client.change({removal("", "cells/1")});
   EXPECT_THAT(state({"cells"}), ElementsAre(R"(cells Rex::Dir 2="A::Cell")", "cells/2 A::Cell"));
   client.change({make("", "cells/3", "A::Cell"), removal("cells", "3")});
   EXPECT_EQ(server.ask({"HKEYS", "state:roots"}), "[cells]");
}

TEST_F(RedisStoreTest, VoidOperationsChangeNothingAndAreLeftOut) {
   start();
   client.change(tree);
   std::string before = client.load({}).last;
   Operations voids{set("nowhere", "a", "1"),
                    make("nowhere", "b", "A::B"),
                    removal("status", "nothing"),
                    removal("nowhere", "a"),
                    removal("", "nowhere"),
                    set("status", ".type", "\"A::B\""),
                    set("", "a", "1"),
                    make("status", "c", "no type"),
                    removal("status", ".type"),
                    make("status", "", "A::B")};
   EXPECT_EQ(client.change(voids), ChangeResult::made);
   voids.push_back(set("status", "text", "1"));
   client.change(voids);
   auto changes = client.read(before);
   ASSERT_TRUE(changes && changes->size() == 2);
   EXPECT_THAT(changes->at(0).operations, IsEmpty());
   EXPECT_EQ(changes->at(0).number, 2u);
   EXPECT_THAT(changes->at(1).operations, ElementsAre(set("status", "text", "1")));
   EXPECT_EQ(changes->at(1).writer, "me");
}

TEST_F(RedisStoreTest, AChangeIsMadeOnlyWhereWhatItRequiresIsSo) {
   start();
   client.change(tree);
   auto require = [](const char* row, const char* field, const char* value) {
      return Operation{Operation::Kind::require, row, field, value};
   };
   const auto touch = set("status", "text", "1");
   EXPECT_EQ(client.change({touch, require("status/port/1", "speed", "10")}), ChangeResult::unmet);
   EXPECT_THAT(state({"status"}), Contains(HasSubstr("up::link")));
   std::string before = client.load({}).last;
   // What is not there has no other value.
   for (const auto& met :
        {require("status/port/1", "speed", "100"), require("status/port/1", "duplex", "1"),
         require("nowhere", "speed", "1")}) {
      EXPECT_EQ(client.change({met, touch}), ChangeResult::made);
   }
   auto changes = client.read(before);
   ASSERT_TRUE(changes && changes->size() == 3);
   EXPECT_THAT(changes->front().operations, ElementsAre(touch)) << "and is no part of it";
}

TEST_F(RedisStoreTest, ChangesAreReadInOrderAndWhole) {
   start();
   std::string before = client.load({}).last;
   client.change({make("", "a", "A::A")});
   Operations large;
   for (int i = 0; i < 2500; ++i) large.push_back(set("a", "f" + std::to_string(i), "0"));
   large[1].value = std::string("\0\r\n\"\xFF", 5);
   client.change(large);
   EXPECT_EQ(server.ask({"XLEN", "state:changes"}), "5") << "the first one, one, and three pieces";
   auto changes = client.read(before);
   ASSERT_TRUE(changes && changes->size() == 2);
   EXPECT_THAT(changes->back().operations, ContainerEq(large));
   EXPECT_THAT(client.read(changes->front().id)->size(), 1u);
   EXPECT_THAT(*client.read(changes->back().id), IsEmpty());

   // As many at a time as are enough; what follows is read from there.
   for (int i = 0; i < 1300; ++i) {
      client.store.change(client.life, "me", 10 + i, {set("a", "x", "1")}, [](ChangeResult) {});
   }
   std::string after = changes->back().id;
   std::vector<size_t> pieces;
   uint64_t next = 10;
   while (true) {
      auto some = client.read(after);
      ASSERT_TRUE(some);
      if (some->empty()) break;
      for (const Change& one : *some) EXPECT_EQ(one.number, next++);
      pieces.push_back(some->size());
      after = some->back().id;
   }
   EXPECT_THAT(pieces, ElementsAre(500u, 500u, 300u));
}

// Rows are read in pieces; each change goes to the first of them and to the last.
TEST_F(RedisStoreTest, WhatIsReadWhileItIsChangedIsOfOneMoment) {
   start();
   Operations large{make("", "a", "A::A")};
   for (int i = 0; i < 1000; ++i) large.push_back(make("a", "row/" + std::to_string(i), "A::Row"));
   std::optional<Statestore::Snapshot> got;
   int last = 0;
   std::function<void()> changeOn = [&] {
      if (got) return;
      std::string number = std::to_string(++last);
      client.store.change(client.life, "me", 2,
                          {set("a", "x", number), removal("a", "row/" + number),
                           make("a", "new/" + number, "A::Row"), set("a/row/0", "x", number)},
                          [&](ChangeResult) { changeOn(); });
   };
   client.change(large);
   LldpTest::RedisClient other(test, loop, "unix:" + server.socket);
   ASSERT_TRUE(other.connect());
   other.store.load({"a"}, [&](Statestore::Snapshot snapshot) { got = std::move(snapshot); });
   changeOn();
   ASSERT_TRUE(other.until([&] { return got.has_value(); }));
   std::map<std::string, Row> rows;
   for (const Row& row : got->rows) rows[row.path] = row;
   EXPECT_EQ(got->rows.front().path, "a");
   EXPECT_THAT(rows, SizeIs(1001)) << "each change takes one and adds one";
   auto x = rows["a/row/0"].fields;
   ASSERT_THAT(x, SizeIs(1));
   EXPECT_THAT(rows["a"].fields, Contains(x.front()));
   EXPECT_THAT(rows["a"].fields, SizeIs(1001));
   EXPECT_TRUE(rows.contains("a/new/" + x.front().second));
   // What follows is read from there.
   auto changes = client.read(got->last);
   ASSERT_TRUE(changes);
   EXPECT_EQ(std::stoul(x.front().second) + changes->size(), size_t(last));
}

TEST_F(RedisStoreTest, AListThatDoesNotReachBackIsGone) {
   start();
   std::string first = client.load({}).last;
   client.change(tree);
   std::string second = client.load({}).last;
   server.ask({"XTRIM", "state:changes", "MAXLEN", "1"});
   EXPECT_FALSE(client.read(first));
   EXPECT_TRUE(client.read(second));
   client.life = "another";
   EXPECT_FALSE(client.read(second));
   EXPECT_EQ(client.change(tree), ChangeResult::otherLife);
}

// Enough to be trimmed: the list is bounded, and the store with it.
TEST_F(RedisStoreTest, TheListIsTrimmed) {
   start();
   client.change({make("", "a", "A::A")});
   int answered = 0;
   for (int i = 0; i < 21000; ++i) {
      client.store.change(client.life, "me", 1, {set("a", "x", "1")},
                          [&](ChangeResult) { ++answered; });
   }
   ASSERT_TRUE(client.until([&] { return answered == 21000; }));
   EXPECT_LT(std::stoi(server.ask({"XLEN", "state:changes"})), 20200);
}

TEST_F(RedisStoreTest, AnEmptiedStoreIsHeardOfAtOnceAndIsAnotherLife) {
   start();
   std::string life = client.life;
   server.ask({"FLUSHALL"});
   EXPECT_TRUE(client.hears("emptied"));
   EXPECT_EQ(client.change(tree), ChangeResult::otherLife);
   EXPECT_FALSE(client.read("0-1"));
   EXPECT_THAT(state({"status"}), IsEmpty());
   EXPECT_NE(client.life, life);
   server.ask({"DEL", "state:life"});
   EXPECT_TRUE(client.hears("emptied"));
}

TEST_F(RedisStoreTest, TwoClientsShareALifeAndHearOfEachOther) {
   start();
   LldpTest::RedisClient other(test, loop, "unix:" + server.socket);
   ASSERT_TRUE(other.connect());
   std::string before = other.load({}).last;
   EXPECT_EQ(other.life, client.life);
   client.change(tree);
   EXPECT_TRUE(other.hears("news"));
   EXPECT_THAT(other.read(before)->at(0).operations, ContainerEq(tree));
}

TEST_F(RedisStoreTest, DatabasesOfOneServerAreApart) {
   start();
   LldpTest::RedisClient other(test, loop, "unix:" + server.socket + "?database=3");
   ASSERT_TRUE(other.connect());
   other.load({});
   EXPECT_NE(other.life, client.life);
   server.ask({"FLUSHDB"});
   EXPECT_TRUE(client.hears("emptied"));
   client.change(tree);
   client.load({"status"});
   EXPECT_EQ(other.change(tree), ChangeResult::made) << "nothing befell its life";
}

// Others may write to the list, too.
TEST_F(RedisStoreTest, EntriesThatAreNoChangeArePassedOver) {
   start();
   std::string before = client.load({}).last;
   using W = LldpTest::RedisServer::Words;
   for (const W& fields :
        {W{"x", "y"}, W{"w", "a", "n", "-1"}, W{"w", "a", "n", "1", "set", "a"},
         W{"w", "a", "n", "1", "burn", "a", "b", "c"},
         W{"w", "a", "n", "1", "m", "1", "set", "a", "b", "c"},
         W{"w", "b", "n", "2", "set", "a", "b", "c"}, W{"w", "a", "n", "3", "m", "1"},
         W{"w", "b", "n", "3", "set", "a", "b", "d"}}) {
      W entry{"XADD", "state:changes", "*"};
      entry.insert(entry.end(), fields.begin(), fields.end());
      server.ask(entry);
   }
   auto changes = client.read(before);
   ASSERT_TRUE(changes && changes->size() == 8);
   for (const Change& one : *changes) {
      bool whole = one.writer == "b";
      EXPECT_EQ(one.operations.size(), whole ? 1u : 0u);
      EXPECT_FALSE(one.id.empty());
   }
   EXPECT_EQ(client.store.malformedEntries(), 6u);
   EXPECT_THAT(test.takeLogs(),
               Contains(AllOf(HasSubstr("STATE_STORE_ENTRY_MALFORMED"),
                              HasSubstr("entry " + changes->at(6).id + " is no change"))));
   EXPECT_THAT(*client.read(changes->back().id), IsEmpty());

   // Keys of another kind are no rows.
   client.change(tree);
   server.ask({"SET", "state:row:status/port/1", "text"});
   EXPECT_EQ(client.change({set("status/port/1", "speed", "1")}), ChangeResult::made);
   EXPECT_THAT(state({"status"}), SizeIs(1));
   client.change({make("status", "port/1", "A::Port")});
   EXPECT_THAT(state({"status"}), SizeIs(2));
   server.ask({"SET", "state:changes", "text"});
   EXPECT_EQ(client.change({removal("", "status")}), ChangeResult::refused);
   EXPECT_EQ(server.ask({"EXISTS", "state:row:status"}), "1");
}

TEST_F(RedisStoreTest, AServerWithoutMemoryRefusesChangesAsAWhole) {
   start();
   client.change(tree);
   test.takeLogs();
   server.ask({"CONFIG", "SET", "maxmemory", "1"});
   Operations mixed{removal("status", "text"), set("status", "a", "1")};
   EXPECT_EQ(client.change({set("status", "a", "1")}), ChangeResult::refused);
   EXPECT_EQ(client.change({set("status", "a", "1")}), ChangeResult::refused);
   EXPECT_THAT(test.takeLogs(), ElementsAre(HasSubstr("STATE_STORE_REFUSES_CHANGES")));
   EXPECT_THAT(state({"status"}), SizeIs(3)) << "it can be read";
   // What began by giving memory back is done to its end.
   EXPECT_EQ(client.change(mixed), ChangeResult::made);
   EXPECT_THAT(state({"status"}), Contains(AllOf(HasSubstr("a=1"), Not(HasSubstr("text")))));
   EXPECT_THAT(test.takeLogs(), ElementsAre(HasSubstr("STATE_STORE_TAKES_CHANGES")));
   EXPECT_EQ(client.change({set("status", "a", "1")}), ChangeResult::refused);
   test.takeLogs();
   server.ask({"CONFIG", "SET", "maxmemory", "0"});
   EXPECT_EQ(client.change({set("status", "a", "2")}), ChangeResult::made);
   EXPECT_THAT(test.takeLogs(), ElementsAre(HasSubstr("STATE_STORE_TAKES_CHANGES")));
}

TEST_F(RedisStoreTest, ScriptsThatTheServerForgotAreSentAgain) {
   start();
   server.ask({"SCRIPT", "FLUSH"});
   EXPECT_EQ(client.change(tree), ChangeResult::made);
   EXPECT_THAT(state({"status"}), SizeIs(3));
}

TEST_F(RedisStoreTest, ARestartedServerIsFoundAgain) {
   start();
   std::string life = client.life;
   EXPECT_THAT(test.takeLogs(), ElementsAre(HasSubstr("STATE_STORE_IN_USE")));
   bool answered = false;
   server.hang();
   client.store.change(life, "me", 1, tree, [&](ChangeResult) { answered = true; });
   server.stop();
   EXPECT_TRUE(client.hears("down"));
   // However often it is tried, there is one line.
   for (int i = 0; i < 5; ++i) {
      test.advance(Redis::RedisStore::longestRetry);
      int ticks = 0;
      client.until([&] { return ++ticks == 5; });
   }
   EXPECT_THAT(test.takeLogs(), ElementsAre(HasSubstr("STATE_STORE_LOST")));
   server.start();
   EXPECT_TRUE(comesUp(client));
   EXPECT_FALSE(answered);
   client.load({});
   EXPECT_NE(client.life, life);
   EXPECT_THAT(test.takeLogs(), ElementsAre(HasSubstr("STATE_STORE_IN_USE")));
}

TEST_F(RedisStoreTest, AHungServerIsGivenUpAndTriedAgain) {
   start();
   EXPECT_EQ(test.context().clock()->nextTime(), Rex::never) << "no timer while all is well";
   server.hang();
   client.store.change(client.life, "me", 1, tree, [](ChangeResult) {});
   test.advance(Redis::RedisStore::mostSilence - 0.1);
   int ticks = 0;
   EXPECT_TRUE(client.until([&] { return ++ticks == 5; }));
   test.takeLogs();
   test.advance(0.2);
   EXPECT_TRUE(client.hears("down"));
   EXPECT_THAT(test.takeLogs(), ElementsAre(HasSubstr("no answer for 10 s")));
   // It connects, for the system does that for the server, and then hears nothing.
   test.advance(1);
   test.advance(Redis::RedisStore::mostSilence);
   server.goOn();
   EXPECT_TRUE(comesUp(client));
   EXPECT_EQ(test.context().clock()->nextTime(), Rex::never);
   EXPECT_EQ(client.change(tree), ChangeResult::made);
}

// Either connection alone takes the other one with it.
TEST_F(RedisStoreTest, CutConnectionsAreMadeAgain) {
   start();
   for (const char* kind : {"normal", "pubsub"}) {
      server.ask({"CLIENT", "KILL", "TYPE", kind});
      EXPECT_TRUE(client.hears("down")) << kind;
      EXPECT_TRUE(comesUp(client)) << kind;
      client.load({});
   }
   server.ask({"FLUSHALL"});
   EXPECT_TRUE(client.hears("emptied")) << "the new pair listens";
}

TEST_F(RedisStoreTest, RetriesAreBounded) {
   client.store.start(client);
   std::vector<double> gaps;
   for (int i = 0; i < 12; ++i) {
      test.settle();
      gaps.push_back(test.context().clock()->nextTime() - test.now());
      test.advance(gaps.back());
   }
   EXPECT_LE(gaps.front(), Redis::RedisStore::firstRetry);
   EXPECT_THAT(gaps, Each(Le(Redis::RedisStore::longestRetry)));
   EXPECT_THAT(gaps.back(), Ge(Redis::RedisStore::longestRetry / 2));
   EXPECT_THAT(test.takeLogs(),
               ElementsAre(AllOf(HasSubstr("STATE_STORE_NOT_REACHED"), HasSubstr("No such file"))));
}

// The client may let go of the store whenever it is told something.
TEST_F(RedisStoreTest, TheStoreMayGoWhileItTells) {
   struct Brief : Statestore::StoreClient {
      std::unique_ptr<Redis::RedisStore> store;
      std::string until;
      void handleUp() override {
         if (until == "up") return store.reset();
         store->load({}, [this](const Statestore::Snapshot& snapshot) {
            if (until == "loaded") return store.reset();
            store->change(snapshot.life, "brief", 1, {}, [](ChangeResult) {});
         });
      }
      void handleDown() override { store.reset(); }
      void handleNews() override { until == "news" ? store.reset() : server->stop(); }
      void handleEmptied() override {}
      LldpTest::RedisServer* server = nullptr;
   };
   for (const char* until : {"up", "loaded", "news", "down"}) {
      server.start();
      Brief brief;
      brief.until = until;
      brief.server = &server;
      auto url = Redis::StoreUrl::parse("unix:" + server.socket);
      brief.store = std::make_unique<Redis::RedisStore>(loop, url, 1);
      brief.store->start(brief);
      EXPECT_TRUE(client.until([&] { return !brief.store; })) << until;
      server.stop();
   }
}

TEST_F(RedisStoreTest, PasswordsAndDatabases) {
   server.start({"--requirepass", "right", "--databases", "2", "--user", "agent", "on", ">own",
                 "~*", "&*", "+@all"});
   std::string url = "unix:" + server.socket;
   struct {
      const char* user;
      const char* password;
      const char* database;
      const char* refusal;  // empty: it is let in
   } rows[] = {{"", "right", "1", ""},          {"agent", "own", "0", ""},
               {"", "wrong", "0", "WRONGPASS"}, {"agent", "right", "0", "WRONGPASS"},
               {"", "", "0", "NOAUTH"},         {"", "right", "2", "DB index is out of range"}};
   for (const auto& row : rows) {
      Redis::StoreUrl where = Redis::StoreUrl::parse(url + "?database=" + row.database);
      where.user = row.user;
      where.password = row.password;
      Redis::RedisStore store(loop, where, 1);
      test.takeLogs();
      store.start(client);
      if (!*row.refusal) {
         EXPECT_TRUE(client.hears("up")) << row.user << " " << row.password;
         continue;
      }
      for (int i = 0; i < 3; ++i) {
         // The attempt has ended, and the next one is no longer away than that.
         EXPECT_TRUE(client.until([&] {
            return test.context().clock()->nextTime() <=
                   test.now() + Redis::RedisStore::longestRetry;
         }));
         test.advance(Redis::RedisStore::longestRetry);
      }
      EXPECT_THAT(test.takeLogs(),
                  ElementsAre(AllOf(HasSubstr("STATE_STORE_ACCESS_REFUSED"), HasSubstr(row.refusal),
                                    Not(HasSubstr("wrong")))));
   }
}

}  // namespace
