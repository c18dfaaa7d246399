// What an operator who listens is told of neighbours and ports.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "host/Watch/LldpEvents.h"
#include "support/Chassis.h"
#include "support/Engine.h"
#include "support/EventReader.h"
#include "support/FrameBuilder.h"
#include "support/World.h"

using namespace LldpTest;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::StartsWith;
using testing::UnorderedElementsAre;

namespace {

// Events of one supervisor, in its own process.
struct Listening {
   Supervisor& supervisor;
   Rex::ContextScope scope{supervisor.context()};
   Host::LldpEvents events{Rex::make<Statestore::EntityManager>()};
   Host::ApiStream stream{1 << 20, [] {}};
   std::shared_ptr<void> source;
   std::vector<ReadEvent> last;

   void start(bool standing = false) { source = events.listenerIs(stream, standing); }
   // "<event> <port> <system name> <reason or attributes>" of each since the last call.
   std::vector<std::string> told() {
      std::string octets(stream.waiting());
      stream.sent(octets.size());
      last = takeEvents(octets);
      std::vector<std::string> texts;
      for (const auto& [id, name, data] : last) {
         std::string text = name;
         if (data.contains("port")) text += " " + data["port"].get<std::string>();
         if (data.contains("neighbor")) {
            text += " " + data["neighbor"]["sysName"]["tlvInfo"].get<std::string>();
         }
         if (data.contains("reason")) text += " " + data["reason"].get<std::string>();
         if (data.contains("changed")) text += " " + data["changed"].dump();
         texts.push_back(text);
      }
      return texts;
   }
};

struct Events : TwoSwitches {
   Listening listening{a};

   void SetUp() override {
      world.run(3);
      ASSERT_THAT(left.neighbors(), ElementsAre("b Ethernet2"));
   }
   void inject(const std::string& lldpdu) {
      wire.frameIs(octetsOf(ethFrame(lldpdu + endOfLldpdu())));
      world.run(0.5);
   }
   std::vector<std::string> told() { return listening.told(); }
};

}  // namespace

TEST_F(Events, BeginWithWhatStandsWhereThatIsAskedFor) {
   listening.start();
   EXPECT_THAT(told(), IsEmpty());
   listening.source.reset();
   listening.start(true);
   EXPECT_THAT(told(),
               ElementsAre("port-up Ethernet1", "neighbor-standing Ethernet1 b", "standing-end"));
   EXPECT_EQ(listening.last.back().data["time"], world.now());
}

TEST_F(Events, NeighborComesAndGoesByAShutdownFrame) {
   listening.start();
   inject(mandatory(7) + tlv(5, "c"));
   inject(mandatory(7, 0));
   EXPECT_THAT(told(),
               ElementsAre("neighbor-added Ethernet1 c", "neighbor-gone Ethernet1 c shutdown"));
   EXPECT_EQ(listening.last[0].id, 1u);
   EXPECT_EQ(listening.last[1].id, 2u);
   EXPECT_EQ(listening.last[1].data["neighbor"]["index"], 2) << "it is shown once more";
}

TEST_F(Events, OnlyNewsIsAChangeAndIsToldOnce) {
   inject(mandatory(7) + tlv(5, "c"));
   listening.start();
   inject(mandatory(7) + tlv(5, "c"));
   inject(mandatory(7, 90) + tlv(5, "c"));
   world.run(40);
   EXPECT_THAT(told(), IsEmpty()) << "also not of b, which has refreshed itself";
   inject(mandatory(7) + tlv(4, "uplink") + tlv(5, "d"));
   EXPECT_THAT(told(), ElementsAre(R"(neighbor-changed Ethernet1 d ["portDesc","sysName"])"));
   inject(mandatory(7) + tlv(4, "uplink") + tlv(5, "d") + systemCapabilities(4, 4));
   EXPECT_THAT(told(), ElementsAre(R"(neighbor-changed Ethernet1 d ["systemCapabilities"])"));
}

TEST_F(Events, EachOtherReasonOfGoing) {
   listening.start();
   a.clearNeighbors(world.now());
   EXPECT_THAT(told(), ElementsAre("neighbor-gone Ethernet1 b cleared"));
   inject(mandatory(7, 5) + tlv(5, "c"));
   right.plug(nullptr);
   world.run(6);
   EXPECT_THAT(told(),
               ElementsAre("neighbor-added Ethernet1 c", "neighbor-gone Ethernet1 c timedOut"));
   inject(mandatory(8) + tlv(5, "d"));
   left.linkIs(false);
   EXPECT_THAT(told(), UnorderedElementsAre("neighbor-added Ethernet1 d", "port-down Ethernet1",
                                            "neighbor-gone Ethernet1 d portLost"));
   left.linkIs(true);
   EXPECT_THAT(told(), ElementsAre("port-up Ethernet1"));
}

TEST_F(Events, PortsComeAndGo) {
   listening.start();
   for (int rotation = 0; rotation < 3; ++rotation) {
      left.leave(rotation);
      world.run(1);
      auto gone = told();
      EXPECT_THAT(gone, testing::Contains("port-down Ethernet1"));
      EXPECT_THAT(gone, testing::Contains("neighbor-gone Ethernet1 b portLost"));
      EXPECT_EQ(gone.size(), 2u);
      left.enter(rotation);
      world.run(40);
      EXPECT_THAT(told(), ElementsAre("port-up Ethernet1", "neighbor-added Ethernet1 b"));
   }
   a.port("Ethernet9").linkIs(false);
   EXPECT_THAT(told(), ElementsAre("port-up Ethernet9", "port-down Ethernet9"));
   a.port("Ethernet9").leave();
   EXPECT_THAT(told(), IsEmpty()) << "it was down already";
}

TEST_F(Events, AgentGoesAndComesBack) {
   listening.start();
   a.stop();
   EXPECT_THAT(told(), ElementsAre("neighbor-gone Ethernet1 b portLost"));
   a.start();
   world.run(40);
   EXPECT_THAT(told(), ElementsAre("neighbor-added Ethernet1 b"));
}

TEST_F(Events, NobodyWatchesForNobody) {
   a.takeLogs();
   listening.start();
   Host::ApiStream other{1 << 20, [] {}};
   auto second = listening.events.listenerIs(other, false);
   listening.source.reset();
   EXPECT_TRUE(listening.events.heard());
   inject(mandatory(7) + tlv(5, "c"));
   EXPECT_THAT(other.waiting(), StartsWith("id: 1\nevent: neighbor-added\n"));
   second.reset();
   inject(mandatory(7, 0));
   EXPECT_THAT(told(), IsEmpty());
   EXPECT_THAT(a.takeLogs(),
               ElementsAre(StartsWith("LLDP_NEIGHBOR_NEW"), StartsWith("LLDP_NEIGHBOR_GONE")));
   listening.start(true);
   inject(mandatory(8) + tlv(5, "d"));
   told();
   EXPECT_EQ(listening.last.back().id, 2u) << "they are numbered for the process";
}

// The listener may be there before anything else is: store, agent, and an active supervisor.
TEST(WorldEvents, FollowAnAgentThatStartsAndBecomesActiveLater) {
   World world;
   auto& b = world.agent("b");
   auto& first = world.supervisor("a");
   first.redundancyIs(Redundancy::protocolHotStandby, Redundancy::modeStandby);
   Listening listening{first};
   listening.start(true);
   EXPECT_THAT(listening.told(), ElementsAre("standing-end"));
   first.port("Ethernet1").joins(b.port("Ethernet2"));
   first.start();
   world.run(40);
   EXPECT_THAT(listening.told(), ElementsAre("port-up Ethernet1"));
   first.redundancyIs(Redundancy::protocolHotStandby, Redundancy::modeActive);
   first.at<Rex::Dir>("l2discovery/lldp/status/local")->createEntity("1", "Lldp::Status");
   world.run(40);
   EXPECT_THAT(listening.told(), ElementsAre("neighbor-added Ethernet1 b"));
}

TEST(WorldEvents, TellOfBothSupervisors) {
   World world;
   Chassis chassis(world);
   for (int cell : {1, 2}) {
      chassis.start(cell, cell == 1 ? Redundancy::modeActive : Redundancy::modeStandby);
   }
   chassis.run(40);
   Listening active{chassis.cell(1)};
   active.start(true);
   EXPECT_THAT(active.told(), testing::Contains("neighbor-standing Management2/1 peer"));
   chassis.peer.netStatus()->hostnameIs("far");
   chassis.run(40);
   EXPECT_THAT(active.told(), testing::Contains(testing::HasSubstr("-changed Management2/1 far")));
   chassis.cell(2).port("Management2/1").linkIs(false);
   chassis.quiet();
   EXPECT_THAT(active.told(), testing::Contains("neighbor-gone Management2/1 far otherSupervisor"));
}
