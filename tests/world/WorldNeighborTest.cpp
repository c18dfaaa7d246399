// Neighbours: how they are learned, kept and lost.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/Engine.h"
#include "support/FrameBuilder.h"
#include "support/World.h"

using namespace LldpTest;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

namespace {

// Two switches that have learned each other.
struct Neighbors : TwoSwitches {
   void SetUp() override {
      world.run(3);
      ASSERT_THAT(left.neighbors(), ElementsAre("b Ethernet2"));
      ASSERT_THAT(right.neighbors(), ElementsAre("a Ethernet1"));
   }
   // A frame that comes from neither.
   void inject(const std::string& lldpdu) { wire.frameIs(octetsOf(ethFrame(lldpdu))); }
};

}  // namespace

TEST_F(Neighbors, LearnEachOther) {
   auto neighbor = left.neighbor();
   EXPECT_EQ(neighbor->msap().chassisIdentifier.stringValue(), "02:00:00:00:00:02");
   EXPECT_EQ(neighbor->ttl(), 120);
   EXPECT_EQ(neighbor->ethAddr(), right.phy()->ethAddr());
   EXPECT_EQ(neighbor->systemCapabilities().enabled.value(), 0x04);
   EXPECT_EQ(neighbor->expiryTime(), neighbor->lastRefreshTime() + 120);
   EXPECT_EQ(a.status()->remTablesInserts(), 1u);
   EXPECT_THAT(a.takeLogs(), Contains(HasSubstr("added on interface Ethernet1")));
}

TEST_F(Neighbors, RefreshEachOther) {
   auto neighbor = left.neighbor();
   world.run(600);
   EXPECT_EQ(left.neighbor(), neighbor);
   EXPECT_EQ(neighbor->lastChangeTime(), neighbor->creationTime());
   EXPECT_GT(neighbor->lastRefreshTime(), world.now() - 31);
   EXPECT_EQ(a.status()->remTablesInserts(), 1u);
}

TEST_F(Neighbors, AgeOutWhenTheOtherFallsSilent) {
   right.plug(nullptr);
   double expiry = left.neighbor()->expiryTime();
   a.takeLogs();
   world.run(expiry - world.now() - 0.5);
   EXPECT_TRUE(left.neighbor());
   world.run(1);
   EXPECT_FALSE(left.neighbor());
   EXPECT_EQ(a.status()->remTablesAgeouts(), 1u);
   EXPECT_EQ(a.status()->remTablesDeletes(), 1u);
   EXPECT_EQ(left.status()->rxAgeoutsTotal(), 1u);
   EXPECT_THAT(a.takeLogs(), ElementsAre(HasSubstr("LLDP_NEIGHBOR_TIMEOUT")));
}

TEST_F(Neighbors, ShutDown) {
   inject(mandatory(7) + tlv(5, "c") + endOfLldpdu());
   world.run(1);
   EXPECT_THAT(left.neighbors(), ElementsAre("b Ethernet2", "c Ethernet1"));
   EXPECT_THAT(right.neighbors(), ElementsAre("a Ethernet1", "c Ethernet1"));
   a.takeLogs();
   inject(mandatory(7, 0) + endOfLldpdu());
   world.run(1);
   EXPECT_THAT(left.neighbors(), ElementsAre("b Ethernet2"));
   EXPECT_EQ(a.status()->remTablesDeletes(), 1u);
   EXPECT_THAT(a.takeLogs(), ElementsAre(HasSubstr("LLDP_NEIGHBOR_GONE")));
}

TEST_F(Neighbors, GoWithTheLink) {
   left.linkIs(false);
   EXPECT_THAT(left.neighbors(), IsEmpty());
   EXPECT_THAT(right.neighbors(), ElementsAre("a Ethernet1"));
   left.linkIs(true);
   size_t sent = wire.frames.size();
   world.run(8);
   EXPECT_GT(wire.frames.size(), sent);
   world.run(30);
   EXPECT_THAT(left.neighbors(), ElementsAre("b Ethernet2"));
   EXPECT_EQ(a.status()->remTablesDeletes(), 1u);
   EXPECT_EQ(a.status()->remTablesAgeouts(), 0u);
}

TEST_F(Neighbors, OperatorClearsAndTheyComeBack) {
   a.takeLogs();
   a.clearNeighbors(world.now());
   EXPECT_THAT(left.neighbors(), IsEmpty());
   EXPECT_EQ(a.status()->remTablesDeletes(), 0u);
   EXPECT_EQ(a.status()->remTablesLastChangeTime(), world.now());
   EXPECT_THAT(a.takeLogs(),
               ElementsAre("LLDP_REMOTE_TABLES_CLEARED: LLDP neighbor table cleared by admin on "
                           "vty1"));
   world.run(31);
   EXPECT_THAT(left.neighbors(), ElementsAre("b Ethernet2"));
   EXPECT_EQ(a.status()->remTablesInserts(), 2u);
}

TEST_F(Neighbors, SurviveLossAndDelay) {
   int count = 0;
   wire.fate = [&](const auto&, const auto&) {
      return ++count % 3 ? std::vector<double>{} : std::vector<double>{5, 0.1, 5};
   };
   world.run(900);
   EXPECT_THAT(left.neighbors(), ElementsAre("b Ethernet2"));
   EXPECT_THAT(right.neighbors(), ElementsAre("a Ethernet1"));
   wire.fate = [](const auto&, const auto&) { return std::vector<double>{}; };
   world.run(130);
   EXPECT_THAT(left.neighbors(), IsEmpty());
   EXPECT_THAT(right.neighbors(), IsEmpty());
}

TEST_F(Neighbors, ManyOnOneWire) {
   auto& c = world.agent("c");
   auto hub = world.wire();
   for (Port* port : {&left, &right, &c.port("Ethernet1")}) port->plug(hub);
   world.run(130);
   EXPECT_THAT(left.neighbors(), ElementsAre("b Ethernet2", "c Ethernet1"));
   EXPECT_THAT(right.neighbors(), ElementsAre("a Ethernet1", "c Ethernet1"));
   EXPECT_THAT(c.port("Ethernet1").neighbors(), ElementsAre("a Ethernet1", "b Ethernet2"));
}

TEST_F(Neighbors, FloodOnOnePortLeavesTheOthersAlone) {
   auto& second = a.port("Ethernet3");
   second.joins(b.port("Ethernet3"));
   world.run(3);
   a.takeLogs();
   for (int round = 0; round < 110; ++round) {
      for (uint32_t n = 0; n < 200; ++n) inject(mandatory(n + round) + endOfLldpdu());
      world.run(0.01);
   }
   EXPECT_THAT(a.takeLogs(), Contains(HasSubstr("LLDP_RX_RATELIMIT")));
   EXPECT_EQ(left.status()->remoteSystems(), 256u);
   EXPECT_THAT(second.neighbors(), ElementsAre("b Ethernet3"));
}

TEST_F(Neighbors, AgentOfTheOtherIsRestarted) {
   world.run(10);
   b.stop();
   EXPECT_FALSE(right.status());
   b.start();
   world.run(3);
   EXPECT_THAT(right.neighbors(), IsEmpty());
   world.run(30);
   EXPECT_THAT(right.neighbors(), ElementsAre("a Ethernet1"));
   EXPECT_THAT(left.neighbors(), ElementsAre("b Ethernet2"));
   EXPECT_EQ(a.status()->remTablesInserts(), 1u);
}
