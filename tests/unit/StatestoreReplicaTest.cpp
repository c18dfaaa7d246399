// Processes that meet in a store: what each is told of what others write, and in which order.
#include <gmock/gmock.h>

#include "Rex/Dir.h"
#include "model/CliConfig.h"
#include "model/Config.h"
#include "model/LocalSystem.h"
#include "model/Status.h"
#include "support/ChangeLog.h"
#include "support/StoreProcess.h"
#include "unit/RexFixture.h"

using namespace LldpTest;
using testing::ElementsAre;

struct StatestoreReplicaTest : RexFixture {
   static constexpr const char* statusPath = "status/local";
   SimulatedStore store;
   StoreProcess a{store, clock, "a"}, b{store, clock, "b"};

   void settle() { quiet(store, *clock); }
   static Wirekit::IntfId port(int n) { return Wirekit::IntfId("Ethernet" + std::to_string(n)); }
   // A port's status with a neighbour, as the engine makes it: in one reaction.
   static void addPort(Lldp::Status& status, int n) {
      Rex::Dispatcher::run([&] {
         auto made = status.portStatusIs(port(n), 1000.0);
         addNeighbour(*made, n);
      });
   }
   static void addNeighbour(Lldp::PortStatus& made, int index) {
      Lldp::RemoteSystem::Msap msap;
      msap.chassisIdentifier.subtype = Lldp::ChassisIdSubtype::local;
      msap.portIdentifier.subtype = Lldp::PortIdSubtype::local;
      msap.portIdentifier.value = Lldp::PortId(Rex::String(std::to_string(index)));
      auto neighbour = made.remoteSystemIs(index, msap);
      neighbour->ttlIs(120);
      made.remoteSystemByMsapIs(neighbour);
   }
   static Rex::Json json(const Rex::Ptr<Rex::Entity>& entity) {
      return sorted(Rex::entityToJson(*entity));
   }
};

TEST_F(StatestoreReplicaTest, WhatOneWritesTheOtherHas) {
   auto ours = a.at<Lldp::Config>("config");
   auto theirs = b.at<Lldp::Config>("config");
   settle();
   EXPECT_TRUE(store.rows().empty());
   ours->txDelayIs(7);
   ours->portConfigIs(port(1))->maxRemoteSystemsIs(3);
   settle();
   EXPECT_EQ(theirs->txDelay(), 7u);
   ASSERT_TRUE(theirs->portConfig(port(1)));
   EXPECT_EQ(theirs->portConfig(port(1))->maxRemoteSystems(), 3u);
   EXPECT_EQ(json(ours), json(theirs));
}
