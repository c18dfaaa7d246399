// The two supervisors of a chassis, each with its agent: who serves which port, one table of both,
// switchover.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/Chassis.h"

using namespace LldpTest;
using Redundancy::modeActive;
using Redundancy::modeStandby;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

struct WorldChassis : testing::Test {
   World world;
   Chassis chassis{world};
   Supervisor& first = chassis.cell(1);
   Supervisor& second = chassis.cell(2);

   void startBoth() {
      chassis.start(1, modeActive);
      chassis.start(2, modeStandby);
      run(40);
   }
   void run(double seconds) {
      chassis.run(seconds);
      chassis.quiet();
      EXPECT_THAT(chassis.check(), IsEmpty());
   }
   // "<port>: <neighbours>" of each port in the merged table, as a supervisor sees it.
   static std::vector<std::string> table(Supervisor& viewer) {
      std::map<std::string, std::string> rows;
      for (auto [intfId, port] : viewer.allStatus()->portStatus()) {
         std::string& row = rows[intfId.stringValue().stdString()];
         for (auto [index, neighbor] : port->remoteSystem()) {
            row += " " + neighbor->msap().portIdentifier.value.value().stdString();
         }
      }
      std::vector<std::string> texts;
      for (const auto& [port, neighbors] : rows) texts.push_back(port + ":" + neighbors);
      return texts;
   }
   static auto wholeTable() {
      return ElementsAre("Ethernet1/1: Ethernet1", "Ethernet1/2: Ethernet2",
                         "Management1/1: Ethernet3", "Management2/1: Ethernet4");
   }
};

}  // namespace

TEST_F(WorldChassis, StandbyWaitsForItsEntryAndServesItsManagementPort) {
   chassis.start(2, modeStandby);
   run(60);
   EXPECT_FALSE(second.status());
   EXPECT_FALSE(second.agent()->protocolRoot());
   chassis.start(1, modeActive);
   run(40);
   EXPECT_TRUE(second.agent()->standbyMode());
   EXPECT_FALSE(second.agent()->statusAccumulatorSm());
   EXPECT_EQ(first.status()->portStatuss(), 3u);
   EXPECT_EQ(second.status()->portStatuss(), 1u);
   EXPECT_TRUE(second.port("Management2/1").neighbor());
   for (auto* viewer : {&first, &second}) EXPECT_THAT(table(*viewer), wholeTable());
   EXPECT_EQ(first.allStatus()->remTablesInserts(), 4u) << "3 of the active, 1 of the standby";
   for (const auto& cable : Chassis::cables) {
      EXPECT_THAT(chassis.peer.port(cable.peerPort).neighbors(),
                  ElementsAre(std::string("switch ") + cable.port));
   }
}

TEST_F(WorldChassis, PeerIsPulledAndInsertedAgain) {
   startBoth();
   chassis.kill(2);
   chassis.pull(2);
   run(1);
   EXPECT_FALSE(first.statusOf(2));
   EXPECT_THAT(table(first), ElementsAre("Ethernet1/1: Ethernet1", "Ethernet1/2: Ethernet2",
                                         "Management1/1: Ethernet3"));
   EXPECT_EQ(first.allStatus()->remTablesInserts(), 3u);
   chassis.start(2, modeStandby);
   run(40);
   EXPECT_EQ(second.status()->remTablesInserts(), 1u);
   EXPECT_THAT(table(first), wholeTable());
   EXPECT_EQ(first.allStatus()->remTablesInserts(), 4u);
}

TEST_F(WorldChassis, ActiveAgentRestartsBesideAStandby) {
   startBoth();
   chassis.stop(1);
   run(3);
   EXPECT_THAT(table(second), ElementsAre("Management2/1:")) << "what the standby still has";
   uint32_t inserts = second.allStatus()->remTablesInserts();
   chassis.start(1, modeActive);
   run(60);
   EXPECT_THAT(table(first), wholeTable());
   EXPECT_EQ(first.allStatus()->remTablesInserts(), inserts + 4) << "counters outlive the agent";
}

TEST_F(WorldChassis, ActiveThatDiedFindsItsNeighborsAndAgesThem) {
   startBoth();
   chassis.kill(1);
   chassis.peer.kill();
   run(20);
   chassis.start(1, modeActive);
   run(20);
   EXPECT_THAT(table(first), wholeTable());
   EXPECT_EQ(first.allStatus()->remTablesInserts(), 4u);
   run(120);
   EXPECT_EQ(first.allStatus()->remTablesAgeouts(), 4u);
   EXPECT_THAT(table(second),
               ElementsAre("Ethernet1/1:", "Ethernet1/2:", "Management1/1:", "Management2/1:"));
}

TEST_F(WorldChassis, StandbyTakesOverInPlaceWhileTheOldActiveIsAlive) {
   startBoth();
   Port& port = second.port("Management2/1");
   auto status = port.status();
   auto neighbor = port.neighbor();
   auto config = port.config();
   ASSERT_TRUE(neighbor);
   chassis.activeIs(2);
   run(0.5);
   EXPECT_FALSE(second.agent()->standbyMode());
   EXPECT_FALSE(second.agent()->inputRoot()->standbyEthIntfStatusDirSm());
   EXPECT_TRUE(second.agent()->statusAccumulatorSm());
   EXPECT_TRUE(second.port("Ethernet1/1").status());
   EXPECT_TRUE(first.agent()->standbyMode()) << "in a process of its own";
   run(40);
   EXPECT_EQ(port.status(), status);
   EXPECT_EQ(port.neighbor(), neighbor);
   EXPECT_EQ(port.config(), config);
   for (auto* viewer : {&first, &second}) EXPECT_THAT(table(*viewer), wholeTable());
   EXPECT_THAT(chassis.peer.port("Ethernet1").neighbors(), ElementsAre("switch Ethernet1/1"));
}

TEST_F(WorldChassis, StandbyTakesOverFromADeadActiveWhichComesBackAsStandby) {
   startBoth();
   chassis.kill(1);
   chassis.activeIs(2);
   run(60);
   EXPECT_THAT(table(second), wholeTable()) << "its management port is as it left it";
   uint32_t inserts = second.allStatus()->remTablesInserts();
   EXPECT_EQ(inserts, 6u);
   auto frontPort = second.port("Ethernet1/1").status();
   chassis.start(1, modeStandby);
   run(40);
   EXPECT_TRUE(first.agent()->standbyMode());
   for (auto* viewer : {&first, &second}) EXPECT_THAT(table(*viewer), wholeTable());
   EXPECT_EQ(second.allStatus()->remTablesInserts(), inserts);
   EXPECT_EQ(second.allStatus()->portStatus(Wirekit::IntfId("Ethernet1/1")), frontPort);
}
