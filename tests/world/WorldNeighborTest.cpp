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
