// How waiting frames ask for their reader.
#include <gtest/gtest.h>

#include <string>

#include "Rex/StateMachine.h"
#include "Wirekit/Pam.h"
#include "unit/RexFixture.h"

namespace Wirekit {
namespace {

struct QuietPam : Pam {
   using Pam::Pam;
   void doTransmit(Pkt&) override { ++sent; }
   void handleRoom() override { ++rooms; }
   int sent = 0;
   int rooms = 0;
};

// Takes one frame in each run and writes down whose it was.
class ReaderSm : public Rex::StateMachine {
 public:
   ReaderSm(Rex::Ptr<Pam> pam, std::string& story) : pam_(pam), story_(story) {
      on(pam_, Pam::readableCountAttr, &ReaderSm::handleReadableCount);
   }

 private:
   void handleReadableCount() {
      if (Pkt::Ptr pkt = pam_->rxPkt()) story_ += *pkt->head();
   }
   Rex::Ptr<Pam> pam_;
   std::string& story_;
};

class PamTest : public RexFixture {
 protected:
   std::string story;

   static bool arrive(Pam& pam, char mark) {
      std::vector<uint8_t> frame(60, static_cast<uint8_t>(mark));
      return pam.rxFrameIs(frame, {});
   }
};

TEST_F(PamTest, eachRunTakesOneFrameAndPortsTakeTurns) {
   auto a = Rex::make<QuietPam>(IntfId("Ethernet1"));
   auto b = Rex::make<QuietPam>(IntfId("Ethernet2"));
   auto ra = Rex::make<ReaderSm>(a, story);
   auto rb = Rex::make<ReaderSm>(b, story);
   for (char mark : {'a', 'A', '1'}) arrive(*a, mark);
   EXPECT_EQ(story, "");  // nothing runs from inside the arrival
   for (char mark : {'b', 'B'}) arrive(*b, mark);
   EXPECT_EQ(pass(), 2u);
   EXPECT_EQ(story, "ab");
   pass();
   EXPECT_EQ(story, "abAB");
   pass();
   EXPECT_EQ(story, "abAB1");
   EXPECT_EQ(pass(), 0u);
   EXPECT_EQ(context.clock()->nextTime(), Rex::never);  // an idle port asks for nothing
}

TEST_F(PamTest, framesThatNobodyTakesAreOfferedAgainAfterAWhile) {
   auto pam = Rex::make<QuietPam>(IntfId("Ethernet1"));
   arrive(*pam, 'a');
   arrive(*pam, 'b');
   pass();
   EXPECT_EQ(pass(), 0u);  // the loop is not kept busy
   double offered = pam->readableCount();
   auto reader = Rex::make<ReaderSm>(pam, story);
   pass(1);
   pass();
   EXPECT_EQ(story, "ab");
   EXPECT_EQ(pam->readableCount(), offered + 2);
   // Or at once with the next frame.
   reader->close();
   arrive(*pam, 'c');
   pass();
   auto next = Rex::make<ReaderSm>(pam, story);
   arrive(*pam, 'd');
   pass();
   pass();
   EXPECT_EQ(story, "abcd");
}

TEST_F(PamTest, anUnreadPortWakesTheLoopEverMoreRarely) {
   auto pam = Rex::make<QuietPam>(IntfId("Ethernet1"));
   arrive(*pam, 'a');
   int woken = 0;
   for (double end = time->now() + 3600; context.clock()->nextTime() <= end; ++woken) {
      time->nowIs(std::max(time->now(), context.clock()->nextTime()));
      pass();
   }
   EXPECT_LT(woken, 70);
   EXPECT_GT(woken, 50);  // but it is never given up
}

TEST_F(PamTest, aFloodedPortLeavesRoomForTheOthers) {
   globalPktManager().memoryLimitIs(100 * 2048);
   auto a = Rex::make<QuietPam>(IntfId("Ethernet1"));
   auto b = Rex::make<QuietPam>(IntfId("Ethernet2"));
   auto c = Rex::make<QuietPam>(IntfId("Ethernet3"));
   for (int i = 0; i < 1000; ++i) arrive(*a, 'a');
   EXPECT_EQ(a->rxFrames(), 51u);
   EXPECT_EQ(a->rxDrops(), 949u);
   for (int i = 0; i < 1000; ++i) arrive(*b, 'b');
   EXPECT_EQ(b->rxFrames(), 25u);
   EXPECT_TRUE(arrive(*c, 'c'));
   EXPECT_TRUE(globalPktManager().newPkt(std::vector<uint8_t>(1500)));  // and for what is sent
   EXPECT_EQ(a->rooms, 0);
   while (a->rxPkt()) {
   }
   EXPECT_EQ(a->rooms, 1);  // told once, when the queue is empty
   a->rxPkt();
   EXPECT_EQ(a->rooms, 1);
}

TEST_F(PamTest, aHeraldSeesWhatWillBeReadBeforeItsTurn) {
   static std::string seen;
   seen.clear();
   auto pam = Rex::make<QuietPam>(IntfId("Ethernet1"));
   pam->heraldIs([](std::span<const uint8_t> frame) { seen += static_cast<char>(frame[0]); });
   arrive(*pam, 'a');
   arrive(*pam, 'b');
   EXPECT_EQ(seen, "ab");
   globalPktManager().memoryLimitIs(0);
   EXPECT_FALSE(arrive(*pam, 'c'));
   pam->close();
   arrive(*pam, 'd');
   EXPECT_EQ(seen, "ab");
}

TEST_F(PamTest, aClosedPortIsDeafAndMute) {
   auto pam = Rex::make<QuietPam>(IntfId("Ethernet1"));
   auto reader = Rex::make<ReaderSm>(pam, story);
   arrive(*pam, 'a');
   pam->close();
   EXPECT_FALSE(arrive(*pam, 'b'));
   pass();
   EXPECT_EQ(story, "");
   pam->txPktIs(globalPktManager().newPkt());
   EXPECT_EQ(pam->sent, 0);
   EXPECT_EQ(globalPktManager().memoryLeft(), globalPktManager().memoryLimit());
}

}  // namespace
}  // namespace Wirekit
