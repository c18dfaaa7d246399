// Timers on one clock.
#include <gmock/gmock.h>

#include "Rex/Clock.h"
#include "Rex/Dispatcher.h"
#include "Rex/Owned.h"
#include "Rex/StateMachine.h"
#include "unit/RexFixture.h"

using testing::ElementsAre;

struct RexClock : RexFixture {
   std::vector<std::string> ran;
   double start = time->now();

   std::unique_ptr<Rex::Timer> timer(const std::string& name, std::function<void()> then = {}) {
      auto made = std::make_unique<Rex::Timer>(clock);
      made->handlerIs(nullptr, [this, name, then] {
         ran.push_back(name);
         if (then) then();
      });
      return made;
   }
};

TEST_F(RexClock, RunsByDeadlineAndThenByArming) {
   auto a = timer("a"), b = timer("b"), c = timer("c"), d = timer("d");
   d->timeMinIs(start + 2);
   c->timeMinIs(start + 1);
   a->timeMinIs(start + 1);
   b->timeMinIs(start + 3);
   a->timeMinIs(start + 1);  // arms anew, behind c as before
   EXPECT_EQ(clock->nextTime(), start + 1);
   EXPECT_EQ(pass(0.5), 0u);
   EXPECT_EQ(pass(1.5), 3u);
   EXPECT_THAT(ran, ElementsAre("c", "a", "d"));
   EXPECT_EQ(clock->nextTime(), start + 3);
}

TEST_F(RexClock, TheSameTimeArmsAgainAfterItRan) {
   auto a = timer("a");
   a->timeMinIs(start);
   EXPECT_EQ(pass(), 1u);
   EXPECT_FALSE(a->armed());
   EXPECT_EQ(a->timeMin(), start);  // reads back also when it has passed
   a->timeMinIs(start);
   EXPECT_TRUE(a->armed());
   EXPECT_EQ(pass(), 1u);
}

TEST_F(RexClock, PastTimesMeanTheNextPassAndInfinityMeansNever) {
   auto a = timer("a"), b = timer("b"), c = timer("c");
   EXPECT_EQ(a->timeMin(), Rex::never);
   a->timeMinIs(0.0);
   b->timeMinIs(start - 5);
   c->timeMinIs(start);
   c->timeMinIs(Rex::never);
   EXPECT_EQ(pass(1e9), 2u);
   EXPECT_THAT(ran, ElementsAre("a", "b"));
   EXPECT_EQ(clock->nextTime(), Rex::never);
   EXPECT_FALSE(c->armed());
}

TEST_F(RexClock, WhatIsArmedDuringAPassWaitsForTheNext) {
   std::unique_ptr<Rex::Timer> spin;
   auto late = timer("late");
   spin = timer("spin", [&] {
      spin->timeMinIs(0.0);
      if (!late->armed()) late->timeMinIs(start - 100);
   });
   spin->timeMinIs(0.0);
   EXPECT_EQ(pass(), 1u);
   EXPECT_THAT(ran, ElementsAre("spin"));
   EXPECT_EQ(pass(), 2u);
   EXPECT_THAT(ran, ElementsAre("spin", "spin", "late"));
}

TEST_F(RexClock, ATimerMovedByAnEarlierOneOfThePassLeavesThePass) {
   auto victim = timer("victim"), moved = timer("moved");
   auto first = timer("first", [&] {
      victim->cancel();
      moved->timeMinIs(start);
   });
   first->timeMinIs(start);
   victim->timeMinIs(start);
   moved->timeMinIs(start);
   EXPECT_EQ(pass(), 1u);
   EXPECT_EQ(pass(), 1u);
   EXPECT_THAT(ran, ElementsAre("first", "moved"));
}

TEST_F(RexClock, AHandlerMayDestroyItsOwnTimerAndOthers) {
   std::unique_ptr<Rex::Timer> a, b = timer("b"), c = timer("c");
   std::string after;
   a = timer("a", [&] {
      b.reset();
      c->timeMinIs(start);
      c.reset();
      a.reset();
      after = "still here";
   });
   a->timeMinIs(start);
   b->timeMinIs(start);
   EXPECT_EQ(pass(1), 1u);
   EXPECT_EQ(after, "still here");
   EXPECT_EQ(pass(1), 0u);
   EXPECT_THAT(ran, ElementsAre("a"));
}

TEST_F(RexClock, EachTimerIsAReactionOfItsOwn) {
   std::vector<uint32_t> reactions;
   auto note = [&] { reactions.push_back(Rex::Dispatcher::reaction); };
   auto a = timer("a", note), b = timer("b", note);
   a->timeMinIs(start);
   b->timeMinIs(start);
   pass();
   ASSERT_EQ(reactions.size(), 2u);
   EXPECT_NE(reactions[0], reactions[1]);
   EXPECT_NE(reactions[0], Rex::Dispatcher::idle);
}

TEST_F(RexClock, AnExceptionLeavesTheClockSound) {
   auto bad = timer("bad", [] { throw std::runtime_error("x"); });
   auto next = timer("next");
   bad->timeMinIs(start);
   next->timeMinIs(start + 1);
   EXPECT_THROW(pass(), std::runtime_error);
   auto fresh = timer("fresh");
   fresh->timeMinIs(start);
   EXPECT_EQ(pass(1), 2u);
   EXPECT_THAT(ran, ElementsAre("bad", "fresh", "next"));
}

namespace {

class TickSm : public Rex::StateMachine {
 public:
   explicit TickSm(std::function<void()> then) : then_(std::move(then)) {
      on(tick_, &TickSm::handleTick);
      tick_.timeMinIs(0.0);
   }
   Rex::Timer& tick() { return tick_; }

 private:
   void handleTick() {
      auto then = then_;
      then();
   }
   Rex::Timer tick_{context().clock()};
   std::function<void()> then_;
};

}  // namespace

TEST_F(RexClock, AMachinesTimerRunsInItsContextAndEndsWithIt) {
   Rex::Context second(clock);
   second.cellId = 2;
   std::vector<int> cells;
   Rex::OwnedMachine<TickSm> owned;
   {
      Rex::ContextScope inside(second);
      owned.make([&] {
         cells.push_back(Rex::Context::current().cellId);
         owned.get()->tick().timeMinIs(0.0);
         owned.reset();  // in its own handler
      });
   }
   EXPECT_EQ(pass(1), 1u);
   EXPECT_EQ(pass(1), 0u);
   EXPECT_THAT(cells, ElementsAre(2));

   owned.make([&] { cells.push_back(0); });
   owned.reset();
   EXPECT_EQ(pass(1), 0u);
}
