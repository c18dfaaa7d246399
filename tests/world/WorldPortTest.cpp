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

TEST_F(Ports, RowsFollowTheInterface) {
   auto& late = a.port("Ethernet7");
   EXPECT_TRUE(late.config());
   EXPECT_TRUE(late.local());
   EXPECT_TRUE(late.status());
   late.joins(b.port("Ethernet7"));
   world.run(3);
   EXPECT_THAT(late.neighbors(), ElementsAre("b Ethernet7"));
   late.leave();
   EXPECT_FALSE(late.config());
   EXPECT_FALSE(late.local());
   EXPECT_FALSE(late.status());
   world.run(3);
   EXPECT_EQ(a.status()->remTablesDeletes(), 1u);
   late.enter();
   world.run(33);
   EXPECT_THAT(late.neighbors(), ElementsAre("b Ethernet7"));
}

TEST_F(Ports, ForwardingModelClosesAndOpensThePort) {
   left.status()->rxFramesErrorsInc(9);
   left.forwardingModelIs(Interface::intfForwardingRouted);
   EXPECT_THAT(left.neighbors(), ElementsAre("b Ethernet2"));
   EXPECT_EQ(left.status()->rxFramesErrors(), 9u);
   left.forwardingModelIs(Interface::intfForwardingDiscard);
   EXPECT_FALSE(left.status());
   double closed = world.now();
   world.run(60);
   EXPECT_EQ(sentSince(closed), 0u);
   left.forwardingModelIs(Interface::intfForwardingBridged);
   world.run(33);
   EXPECT_THAT(left.neighbors(), ElementsAre("b Ethernet2"));
   EXPECT_EQ(left.status()->rxFramesErrors(), 0u);
}

TEST_F(Ports, LldpBypassAdmitsAPortThatIsHeldBack) {
   left.forwardingModelIs(Interface::intfForwardingUnauthorized);
   EXPECT_FALSE(left.status());
   a.dot1x()->lldpBypassIs(true);
   world.run(33);
   EXPECT_THAT(left.neighbors(), ElementsAre("b Ethernet2"));
   a.dot1x()->lldpBypassIs(false);
   EXPECT_FALSE(left.status());
   EXPECT_FALSE(left.config());
}

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

TEST_F(Ports, AdministrativeStatus) {
   struct {
      AdminStatus status;
      bool sends, receives;
   } cases[] = {{AdminStatus::txOnly, true, false},
                {AdminStatus::rxOnly, false, true},
                {AdminStatus::disabled, false, false},
                {AdminStatus::txAndRx, true, true}};
   for (const auto& c : cases) {
      SCOPED_TRACE(Rex::valueToString(c.status).charPtr());
      a.cli("Ethernet1")->adminStatusIs(c.status);
      world.run(5);  // the hold-off of a port that stopped
      a.clearNeighbors(world.now());
      double since = world.now();
      world.run(65);
      EXPECT_EQ(sentSince(since) > 0, c.sends);
      EXPECT_EQ(left.neighbors().size() == 1, c.receives);
   }
}

TEST_F(Ports, SelectionOfTlvs) {
   auto sent = [&](unsigned type) {
      world.run(31);
      return tlvIn(wire.frames.back(), type);
   };
   right.leave();  // leaves the wire to the left port
   EXPECT_EQ(sent(5), "a");
   a.cli()->tlvSysNameIs(false);
   EXPECT_EQ(sent(5), "none");
   EXPECT_NE(sent(7), "none");
   a.cli()->tlvSysCapIs(false);
   EXPECT_EQ(sent(7), "none");
   a.cli()->tlvSysNameIs(true);
   EXPECT_EQ(sent(5), "a");
}

TEST_F(Ports, Intervals) {
   right.leave();
   a.cli()->messageTxIntervalIs(5);
   a.cli()->messageTxHoldTimeIs(20);
   world.run(60);
   double since = world.now();
   world.run(50);
   EXPECT_EQ(sentSince(since), 10u);
   EXPECT_EQ(tlvIn(wire.frames.back(), 3), std::string("\0\x14", 2));
   a.cli()->messageTxIntervalIs(1);
   world.run(10.5);
   since = world.now();
   world.run(50);
   EXPECT_EQ(sentSince(since), 50u);
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

TEST_F(Ports, DescriptionGoesOut) {
   auto row = Rex::make<Interface::EthPhyIntfConfig>(left.intfId());
   row->descriptionIs("to the core");
   a.at<Interface::AllEthPhyIntfConfigDir>("interface/config/eth/phy/all")->intfConfigIs(row);
   world.run(2.1);
   EXPECT_EQ(right.neighbor()->portDesc().tlvInfo.value(), "to the core");
   row->descriptionIs("");
   world.run(2.1);
   EXPECT_FALSE(right.neighbor()->portDesc().tlvReceived);
}

TEST_F(Ports, ManagementPortFollowsItsMtu) {
   auto& management = a.port("Management1");
   EXPECT_EQ(management.local()->maximumFrameSizeInfo().maxFrameSize, 1518);
   management.phy()->maxMtuIs(9000);
   EXPECT_EQ(management.local()->maximumFrameSizeInfo().maxFrameSize, 9018);
   management.joins(b.port("Management1"));
   world.run(3);
   EXPECT_THAT(management.neighbors(), ElementsAre("b Management1"));
}

TEST_F(Ports, RouterIsToldWhileRoutingIsOn) {
   EXPECT_EQ(right.neighbor()->systemCapabilities().enabled.value(), 0x04);
   a.at<Routing::Config>("routing/config")->routingIs(true);
   world.run(2.1);
   EXPECT_EQ(right.neighbor()->systemCapabilities().enabled.value(), 0x14);
}

TEST_F(Ports, MonitoringPortReceivesAlone) {
   a.bridging()->switchIntfConfigIs(left.intfId())->switchportModeIs(Bridging::switchportMonitorIn);
   left.leave();
   left.enter();
   EXPECT_EQ(left.config()->adminStatus(), AdminStatus::rxOnly);
   double since = world.now();
   world.run(60);
   EXPECT_EQ(sentSince(since), 0u);
   EXPECT_THAT(left.neighbors(), ElementsAre("b Ethernet2"));
}
