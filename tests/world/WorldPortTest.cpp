// A port's life, and what the operator and the switch change on it.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/World.h"

using namespace LldpTest;
using Lldp::AdminStatus;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

struct Ports : TwoSwitches {
   void SetUp() override { world.run(3); }
   // Frames of the left port since a time.
   size_t sentSince(double time) const {
      size_t count = 0;
      for (const auto& frame : wire.frames) {
         bool ours = std::equal(frame.octets.begin() + 6, frame.octets.begin() + 12,
                                left.phy()->ethAddr().octets());
         if (ours && frame.time >= time) ++count;
      }
      return count;
   }
};

}  // namespace

TEST_F(Ports, OperatorTurnsLldpOffAndOn) {
   double off = world.now();
   a.cli()->enabledIs(false);
   EXPECT_EQ(left.config()->adminStatus(), AdminStatus::disabled);
   world.run(200);
   EXPECT_EQ(sentSince(off), 0u);
   EXPECT_THAT(left.neighbors(), IsEmpty());
   EXPECT_THAT(right.neighbors(), IsEmpty());
   double on = world.now();
   a.cli()->enabledIs(true);
   world.run(1.9);
   EXPECT_EQ(sentSince(on), 0u);
   world.run(0.2);
   EXPECT_EQ(sentSince(on), 1u);
   EXPECT_THAT(right.neighbors(), ElementsAre("a Ethernet1"));
}

TEST_F(Ports, OffBeforeTheStart) {
   auto& c = world.agent("c");
   c.cli()->enabledIs(false);
   auto& port = c.port("Ethernet1");
   auto& line = port.joins(b.port("Ethernet9"));
   world.run(100);
   for (const auto& frame : line.frames) EXPECT_NE(tlvIn(frame, 5), "c");
   EXPECT_THAT(port.neighbors(), IsEmpty());
   c.cli()->enabledIs(true);
   world.run(33);
   EXPECT_THAT(port.neighbors(), ElementsAre("b Ethernet9"));
}

TEST_F(Ports, ChangesOfTheSystemGoOutAtOnce) {
   world.run(10);
   a.netStatus()->hostnameIs("renamed");
   world.run(0.1);
   EXPECT_THAT(right.neighbors(), ElementsAre("renamed Ethernet1"));
   world.run(10);
   a.netStatus()->domainNameIs("example.net");
   a.netStatus()->hostnameIs("again");
   world.run(2.1);
   EXPECT_THAT(right.neighbors(), ElementsAre("again.example.net Ethernet1"));

   // Another chassis is another neighbour; the old one ages out.
   world.run(10);
   a.bridging()->bridgeMacAddrIs({2, 0, 0, 0, 9, 9});
   world.run(0.1);
   EXPECT_EQ(right.neighbors().size(), 2u);
   world.run(121);
   EXPECT_EQ(right.neighbor()->msap().chassisIdentifier.stringValue(), "02:00:00:00:09:09");
}
