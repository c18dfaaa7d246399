// The contract of notification, as it stands in Rex/Dispatcher.h.
#include <gmock/gmock.h>

#include "Rex/Dispatcher.h"
#include "Rex/Owned.h"
#include "Rex/Register.h"
#include "Rex/StateMachine.h"
#include "Rex/String.h"
#include "unit/RexFixture.h"

namespace RexDispatcherTest {

struct Item {
   uint8_t number = 0;
   int value = 0;
   bool operator==(const Item&) const = default;
};
BOOST_DESCRIBE_STRUCT(Item, (), (number, value))

struct Box : Rex::Entity {
   REX_ENTITY(Box, Rex::Entity)
   REX_ATTRIBUTE(int, a)
   REX_ATTRIBUTE(int, b)
   REX_STAMP(double, stamp)
   REX_VALUES(Item, item, uint8_t, number)
   REX_CHILDREN(Box, child, int)
   REX_ENTITY_END()
   Box() = default;
   explicit Box(int) {}
};

// Refuses what is above its bound, as a value type in a setter does.
struct Bounded {
   explicit Bounded(int value) : value(value) {
      if (value > 9) Rex::throwRangeException("Bounded > 9 not allowed");
   }
   int value;
};

// Reports each of its reactions by a word, and lets the test say what a handler does.
using Script = std::function<void(const std::string&)>;

class ProbeSm : public Rex::StateMachine {
 public:
   ProbeSm(const Rex::Ptr<Box>& box, Script script) : script_(std::move(script)), box_(box) {
      on(box_, Box::aAttr, &ProbeSm::handleA);
      on(box_, Box::bAttr, &ProbeSm::handleB);
      on(box_, Box::stampAttr, &ProbeSm::handleStamp);
      on(box_, Box::itemAttr, &ProbeSm::handleItem);
      on(box_, Box::childAttr, &ProbeSm::handleChild);
   }
   void turnTo(const Rex::Ptr<Box>& box) {
      unwatch(box_);
      box_ = box;
      on(box_, Box::aAttr, &ProbeSm::handleA);
   }
   void watchChildrenLast() {
      unwatch(box_);
      onLast(box_, Box::childAttr, &ProbeSm::handleChild);
   }
   int closings = 0;

 private:
   void doClose() override { ++closings; }
   void say(const std::string& word) {
      Script script = script_;  // outlives the machine
      script(word);
   }
   void handleA() { say("a=" + std::to_string(box_->a())); }
   void handleB() { say("b=" + std::to_string(box_->b())); }
   void handleStamp() { say("stamp"); }
   void handleItem(const uint8_t& key) { say("item " + std::to_string(key)); }
   void handleChild(int key) { say("child " + std::to_string(key)); }

   Script script_;
   Rex::Ptr<Box> box_;
};

}  // namespace RexDispatcherTest

REX_REGISTER(RexDispatcherTest::Box)

using namespace RexDispatcherTest;
using testing::ElementsAre;
using testing::IsEmpty;

struct RexDispatcher : RexFixture {
   Rex::Ptr<Box> box = Rex::make<Box>();
   Rex::Ptr<Box> other = Rex::make<Box>();
   std::vector<std::string> heard;

   // Records, then does what the test says, and marks the handler's end if that changed something.
   Script record(Script then = {}) {
      return [this, then](const std::string& word) {
         heard.push_back(word);
         if (then) {
            then(word);
            heard.push_back("end " + word);
         }
      };
   }
   Rex::Ptr<ProbeSm> probe(const Rex::Ptr<Box>& on, Script script) {
      return Rex::make<ProbeSm>(on, std::move(script));
   }
};

TEST_F(RexDispatcher, OnlyADifferenceNotifiesExceptForAStamp) {
   auto sm = probe(box, record());
   box->aIs(0);
   box->aIs(1);
   box->aIs(1);
   box->stampIs(5);
   box->stampIs(5);
   box->itemIs({7, 1});
   box->itemIs({7, 1});
   box->itemIs({7, 2});
   box->itemDel(8);
   box->itemDel(7);
   EXPECT_THAT(heard, ElementsAre("a=1", "stamp", "stamp", "item 7", "item 7", "item 7"));
}

TEST_F(RexDispatcher, HandlersNeverNestAndChangesGoOutInOrder) {
   auto second = probe(other, record([&](const std::string& word) {
                          if (word == "b=1") box->bIs(9);
                       }));
   auto first = probe(box, record([&](const std::string& word) {
                         if (word != "a=1") return;
                         other->bIs(1);
                         box->itemIs({4, 4});
                         other->aIs(2);
                      }));
   box->aIs(1);
   EXPECT_THAT(heard, ElementsAre("a=1", "end a=1", "b=1", "end b=1", "item 4", "end item 4", "a=2",
                                  "end a=2", "b=9", "end b=9"));
}

TEST_F(RexDispatcher, AChangeIsQueuedOnceWhilePendingAndReadAsItStandsThen) {
   auto sm = probe(other, record());
   auto first = probe(box, [&](const std::string&) {
      other->aIs(1);
      other->itemIs({1, 1});
      other->itemIs({2, 1});
      other->aIs(2);
      other->itemIs({1, 2});
      other->stampIs(1);
      other->stampIs(1);
   });
   box->aIs(1);
   EXPECT_THAT(heard, ElementsAre("a=2", "item 1", "item 2", "stamp"));
}

TEST_F(RexDispatcher, WritingTheSameAttributeAgainInItsHandlerComesBack) {
   auto sm = probe(box, record([&](const std::string&) {
                      if (box->a() < 3) box->aIs(box->a() + 1);
                   }));
   box->aIs(1);
   EXPECT_THAT(heard, ElementsAre("a=1", "end a=1", "a=2", "end a=2", "a=3", "end a=3"));
}

TEST_F(RexDispatcher, AMachineMadeByAnEarlierChangeSeesTheLaterOnesOfTheReaction) {
   Rex::Ptr<ProbeSm> made;
   auto creator = probe(box, [&](const std::string& word) {
      if (word == "child 1") made = probe(box->child(1), record());
   });
   Rex::Dispatcher::run([&] {
      auto child = box->childIs(1);
      child->aIs(5);
      child->itemIs({2, 2});
   });
   EXPECT_THAT(heard, ElementsAre("a=5", "item 2"));
}

TEST_F(RexDispatcher, WhatIsToRunLastRunsBehindAllThatTheReactionChanges) {
   auto last = probe(box, record([&](const std::string& word) {
                        if (word == "child 1") other->bIs(3);
                     }));
   last->watchChildrenLast();
   auto closed = probe(box, record());
   closed->watchChildrenLast();
   auto turned = probe(box, record());
   turned->watchChildrenLast();
   auto sm = probe(other, record([&](const std::string& word) {
                      if (word == "a=1") other->bIs(2);
                      if (word != "b=2") return;
                      closed->close();
                      turned->turnTo(box);
                   }));
   Rex::Dispatcher::run([&] {
      box->childIs(1);
      box->childIs(2);
      other->aIs(1);
   });
   EXPECT_THAT(heard, ElementsAre("a=1", "end a=1", "b=2", "end b=2", "child 1", "end child 1",
                                  "b=3", "end b=3", "child 2", "end child 2"));
}

TEST_F(RexDispatcher, AnOldEntityThatNobodyWatchesQueuesNothing) {
   Rex::Ptr<ProbeSm> late;
   auto trigger = probe(box, [&](const std::string& word) {
      if (word == "b=1") {
         late = probe(other, record());
         return;
      }
      box->bIs(1);
      other->aIs(7);  // nobody watches it yet
      EXPECT_TRUE(Rex::Dispatcher::anyPending(
          [](const Rex::Entity&, uint32_t id) { return id == Box::bAttr.id; }));
      EXPECT_FALSE(Rex::Dispatcher::anyPending(
          [](const Rex::Entity&, uint32_t id) { return id == Box::aAttr.id; }));
   });
   box->aIs(1);
   EXPECT_THAT(heard, IsEmpty());
   other->aIs(8);
   EXPECT_THAT(heard, ElementsAre("a=8"));
}

TEST_F(RexDispatcher, WatchersThatAHandlerRemovesHearNothingAndNewOnesTheNextChange) {
   Rex::Ptr<ProbeSm> victim;
   Rex::Ptr<ProbeSm> late;
   auto killer =
       probe(box, record([&](const std::string& word) {
                if (word != "a=1") return;
                victim->close();
                late = probe(box, [&](const std::string& w) { heard.push_back("late " + w); });
                box->bIs(1);
             }));
   victim = probe(box, [&](const std::string& w) { heard.push_back("victim " + w); });
   box->aIs(1);
   EXPECT_THAT(heard, ElementsAre("a=1", "end a=1", "b=1", "end b=1", "late b=1"));
   EXPECT_EQ(victim->closings, 1);
}

TEST_F(RexDispatcher, AMachineMayDeleteItselfInItsHandler) {
   Rex::OwnedMachine<ProbeSm> owned;
   owned.make(box, record([&](const std::string&) {
                 box->bIs(1);
                 owned.reset();
                 box->itemIs({1, 1});
              }));
   auto bystander = probe(box, [&](const std::string& w) { heard.push_back("by " + w); });
   box->aIs(1);
   EXPECT_THAT(heard, ElementsAre("a=1", "end a=1", "by a=1", "by b=1", "by item 1"));
   EXPECT_FALSE(owned.get());
}

TEST_F(RexDispatcher, AHandlerMayDeleteTheEntityThatChanged) {
   auto child = box->childIs(1);
   Box* last = child.get();
   auto first = probe(child, record([&](const std::string&) { box->childDel(1); }));
   auto second = probe(child, record());
   auto holder = probe(box, record());
   child = nullptr;
   last->aIs(1);
   EXPECT_THAT(heard, ElementsAre("a=1", "end a=1", "a=1", "child 1"));
   EXPECT_FALSE(box->childHas(1));
}

TEST_F(RexDispatcher, DeletingAnEntityReportsItsKeyAndNoneOfItsMembers) {
   auto child = box->childIs(1);
   child->itemIs({3, 3});
   auto inside = probe(child, record());
   auto holder = probe(box, [&](const std::string& w) {
      heard.push_back("holder " + w);
      EXPECT_EQ(child->item(3).value, 3);  // still readable
   });
   box->childDel(1);
   EXPECT_THAT(heard, ElementsAre("holder child 1"));
}

TEST_F(RexDispatcher, AClosedMachineRunsNothingAndClosesOnce) {
   auto sm = probe(box, record());
   Rex::Dispatcher::run([&] {
      box->aIs(1);
      sm->close();
   });
   sm->close();
   box->bIs(1);
   sm->turnTo(other);
   other->aIs(1);
   EXPECT_THAT(heard, IsEmpty());
   EXPECT_EQ(sm->closings, 1);
}

TEST_F(RexDispatcher, TurningToAnotherEntityLeavesTheFirst) {
   auto sm = probe(box, record());
   sm->turnTo(other);
   box->aIs(1);
   other->aIs(2);
   EXPECT_THAT(heard, ElementsAre("a=2"));
}

TEST_F(RexDispatcher, AnExceptionLeavesTheDispatcherSound) {
   bool fail = true;
   auto sm = probe(box, [&](const std::string& word) {
      heard.push_back(word);
      other->aIs(1);
      if (fail) Bounded(10);
   });
   auto reader = probe(other, record());
   EXPECT_THROW(box->aIs(1), std::exception);
   EXPECT_FALSE(Rex::Dispatcher::running());
   EXPECT_FALSE(Rex::Dispatcher::anyPending([](const Rex::Entity&, uint32_t) { return true; }));
   fail = false;
   other->aIs(0);
   box->aIs(2);
   EXPECT_THAT(heard, ElementsAre("a=1", "a=0", "a=2", "a=1"));
   sm->close();
   box->aIs(3);
   EXPECT_EQ(heard.size(), 4u);
}
