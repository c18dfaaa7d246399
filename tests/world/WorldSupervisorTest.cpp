// Start, stop and restart of one supervisor.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/World.h"

using namespace LldpTest;
using Redundancy::modeActive;
using Redundancy::modeStandby;
using Redundancy::modeTakingOver;
using Redundancy::protocolColdStandby;
using Redundancy::protocolHotStandby;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

// What the active supervisor does for its peer.
void makeStatusOf(Supervisor& peer) {
   peer.at<Rex::Dir>("l2discovery/lldp/status/local")
       ->createEntity(Rex::format("%d", peer.context().cellId), "Lldp::Status");
}

}  // namespace

TEST(WorldStart, RedundancyDecidesTheMode) {
   struct {
      Redundancy::Protocol protocol;
      Redundancy::Mode mode;
      bool makesStatus;
      bool standby;
   } cases[] = {
       {Redundancy::protocolUnknown, Redundancy::modeUnknown, true, false},
       {protocolColdStandby, modeStandby, true, false},
       {protocolHotStandby, modeActive, true, false},
       {protocolHotStandby, modeTakingOver, true, true},
       {protocolHotStandby, modeStandby, false, true},
   };
   for (const auto& c : cases) {
      World world;
      auto& a = world.agent("a");
      a.redundancyIs(c.protocol, c.mode);
      EXPECT_TRUE(a.agent()->standbyMode());
      EXPECT_FALSE(a.agent()->mountsComplete());
      world.run(1);
      EXPECT_TRUE(a.agent()->mountsComplete());
      EXPECT_EQ(bool(a.status()), c.makesStatus);
      EXPECT_EQ(a.agent()->standbyMode(), c.standby);
      EXPECT_EQ(bool(a.agent()->protocolRoot()), c.makesStatus);
      if (!c.makesStatus) continue;
      EXPECT_EQ(bool(a.agent()->inputRoot()->inputSm()), !c.standby);
      EXPECT_EQ(bool(a.agent()->inputRoot()->standbyEthIntfStatusDirSm()), c.standby);
      EXPECT_TRUE(a.agent()->protocolRoot()->onOffSwitchSm());
      EXPECT_EQ(a.localSystem()->sysCapSupported().value(), c.standby ? 0 : 0x14);
   }
}

TEST(WorldStart, ActiveStaysActive) {
   World world;
   auto& a = world.agent("a");
   auto& port = a.port("Ethernet1");
   port.joins(world.agent("b").port("Ethernet1"));
   world.run(3);
   a.redundancyIs(protocolHotStandby, modeStandby);
   EXPECT_TRUE(a.agent()->standbyMode());
   EXPECT_TRUE(a.agent()->inputRoot()->inputSm());
   EXPECT_THAT(port.neighbors(), ElementsAre("b Ethernet1"));
   a.redundancyIs(protocolHotStandby, modeActive);
   world.run(60);
   EXPECT_THAT(port.neighbors(), ElementsAre("b Ethernet1"));
}

TEST(WorldStart, WhatHasNoInterfaceAnyMoreIsSwept) {
   World world;
   auto& a = world.agent("a");
   auto& port = a.port("Ethernet1");
   makeStatusOf(a);  // left behind by an agent that died
   Wirekit::IntfId gone("Ethernet9");
   a.status()->portStatusIs(gone, 1.0);
   a.status()->portStatusIs(port.intfId(), 1.0)->rxFramesTotalInc(7);
   a.config()->portConfigIs(gone);
   a.localSystem()->localPortIs(gone);
   Lldp::ManagementAddress::Key key{1, Lldp::ManAddress("\x0A\0\0\x01", 4)};
   a.localSystem()->managementAddressIs(Lldp::ManagementAddress{key, 2, 5, {}});
   a.localSystem()->managementAddressPrioIs(Lldp::ManAddrPriority{}, key);
   a.localSystem()
       ->localPortIs(port.intfId())
       ->unknownOrgDefTlvIs({{Lldp::Oui{0x00AA00}, 1, 1}, Lldp::BoundedString507()});
   world.run(1);
   EXPECT_FALSE(a.status()->portStatusHas(gone));
   EXPECT_FALSE(a.config()->portConfigHas(gone));
   EXPECT_FALSE(a.localSystem()->localPortHas(gone));
   EXPECT_FALSE(a.localSystem()->managementAddressHas(key));
   EXPECT_EQ(a.localSystem()->managementAddressPrios(), 1u) << "the fallback alone";
   EXPECT_EQ(port.local()->unknownOrgDefTlvs(), 0u);
   EXPECT_EQ(port.status()->rxFramesTotal(), 7u);
}

TEST(WorldStartDeathTest, StatusOfAnInterfaceThatIsNoPort) {
   World world;
   auto& a = world.agent("a");
   auto& vlan = a.port("Vlan1");
   makeStatusOf(a);
   a.status()->portStatusIs(vlan.intfId(), 1.0);
   EXPECT_DEATH(world.run(1), "Lldp::Agent::Input::lldpCapable\\( i.key\\(\\) \\)");
}

TEST(WorldStop, AtEveryStageOfTheStart) {
   {
      World world;  // mounts not done
      auto& a = world.agent("a");
      a.port("Ethernet1");
      Rex::ContextScope scope(a.context());
      a.agent()->doCleanup();
      world.run(1);
      EXPECT_FALSE(a.agent()->protocolRoot());
   }
   {
      World world;  // the status of this cell is missing
      auto& a = world.agent("a");
      a.redundancyIs(protocolHotStandby, modeStandby);
      world.run(1);
      Rex::ContextScope scope(a.context());
      a.agent()->doCleanup();
      makeStatusOf(a);
      world.run(1);
      EXPECT_FALSE(a.agent()->protocolRoot());
   }
   {
      World world;  // standby
      auto& a = world.agent("a");
      a.redundancyIs(protocolHotStandby, modeTakingOver);
      world.run(1);
      Rex::ContextScope scope(a.context());
      a.agent()->doCleanup();
      a.redundancyIs(protocolHotStandby, modeActive);
      a.dot1x()->lldpBypassIs(true);
      a.clearNeighbors(world.now());
      EXPECT_FALSE(a.agent()->inputRoot()->inputSm());
   }
   {
      World world;  // made, and never asked for its mounts
      auto& a = world.agent("a");
      Rex::ContextScope scope(a.context());
      auto idle = Lldp::Agent::agentFactory("idle");
      idle->doCleanup();
      idle->doCleanup();
   }
}

TEST(WorldStop, RunningAgentEndsItsPorts) {
   World world;
   auto& a = world.agent("a");
   auto& b = world.agent("b");
   auto& wire = a.port("Ethernet1").joins(b.port("Ethernet1"));
   world.run(3);
   a.stop();
   EXPECT_FALSE(a.port("Ethernet1").status());
   EXPECT_FALSE(a.port("Ethernet1").config());
   EXPECT_EQ(a.status()->remTablesDeletes(), 1u);
   wire.frames.clear();
   b.port("Ethernet1").linkIs(false);
   world.run(100);
   EXPECT_THAT(wire.frames, IsEmpty());
   // The switch goes on without the agent.
   a.port("Ethernet1").linkIs(false);
   a.port("Ethernet1").leave();
   a.cli()->enabledIs(false);
   a.netStatus()->hostnameIs("other");
   EXPECT_EQ(a.localSystem()->sysName().value(), "a");
}
