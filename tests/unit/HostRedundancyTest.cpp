// When a process begins anew because its agent cannot take up the role that it is given.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "host/Redundancy.h"
#include "model/Status.h"
#include "support/TestContext.h"

using Host::Role;
using Redundancy::modeActive;
using Redundancy::modeStandby;
using Redundancy::modeTakingOver;
using Redundancy::protocolHotStandby;
using Redundancy::protocolNone;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

struct RedundancyOfTheHost : testing::Test {
   LldpTest::TestContext context;
   Rex::Ptr<Statestore::EntityManager> manager = Rex::make<Statestore::EntityManager>();
   Rex::Dir::Ptr statusDir = Rex::make<Rex::Dir>();
   Redundancy::RedundancyStatus::Ptr status;
   Rex::Ptr<Host::RedundancySm> sm;
   std::vector<Role> restarts;
   int begun = 0, takeovers = 0;

   ~RedundancyOfTheHost() override {
      if (sm) sm->close();
   }
   void begin(std::optional<Role> role = {}) {
      status = Host::redundancyIn(*manager, role);
      sm = Rex::make<Host::RedundancySm>(
          status, statusDir,
          Host::RedundancySm::Reactions{[this] { ++begun; }, [this] { ++takeovers; },
                                        [this](Role as) { restarts.push_back(as); }});
      context.settle();
   }
   // As the management API writes them.
   void roleIs(Redundancy::Protocol protocol, Redundancy::Mode mode) {
      status->protocolIs(protocol);
      status->modeIs(mode);
      context.settle();
   }
};

}  // namespace

TEST_F(RedundancyOfTheHost, AnActiveThatIsToBeStandbyBeginsAnewOnce) {
   begin();
   roleIs(protocolHotStandby, modeActive);
   EXPECT_THAT(restarts, IsEmpty()) << "also not for what stood between protocol and mode";
   roleIs(protocolHotStandby, modeTakingOver);
   EXPECT_THAT(restarts, ElementsAre(Role::standby));
   roleIs(protocolHotStandby, modeStandby);
   EXPECT_EQ(restarts.size(), 1u);
}

TEST_F(RedundancyOfTheHost, AStandbyTakesOverInPlaceUnlessItWaits) {
   begin(Role::standby);
   EXPECT_EQ(status->mode(), modeStandby);
   roleIs(protocolHotStandby, modeTakingOver);
   statusDir->createEntity("1", "Lldp::Status");
   EXPECT_EQ(begun, 0);
   status->modeIs(modeActive);
   EXPECT_EQ(begun, 1) << "before anything of the new role can go out";
   context.settle();
   EXPECT_THAT(restarts, IsEmpty());
   EXPECT_EQ(takeovers, 1);
   roleIs(protocolHotStandby, modeStandby);
   EXPECT_THAT(restarts, ElementsAre(Role::standby)) << "it was active in between";

   sm->close();
   restarts.clear();
   statusDir->deleteEntity("1");
   begin();
   roleIs(protocolNone, modeStandby);
   EXPECT_THAT(restarts, ElementsAre(Role::active)) << "nobody has made its status";
}

TEST_F(RedundancyOfTheHost, AnAgentWhoseStatusGoesOrIsAnotherBeginsAnewInItsRole) {
   for (Role role : {Role::active, Role::standby}) {
      for (bool returns : {false, true}) {
         SCOPED_TRACE(returns ? "another one" : "gone");
         statusDir->deleteEntity("1");
         status = Host::redundancyIn(*manager, {});
         roleIs(protocolHotStandby, role == Role::active ? modeActive : modeStandby);
         restarts.clear();
         begin();
         statusDir->createEntity("1", "Lldp::Status");
         statusDir->createEntity("2", "Lldp::Status");
         context.settle();
         statusDir->deleteEntity("2");
         context.settle();
         EXPECT_THAT(restarts, IsEmpty());
         statusDir->deleteEntity("1");
         if (returns) statusDir->createEntity("1", "Lldp::Status");
         context.settle();
         EXPECT_THAT(restarts, ElementsAre(role));
         sm->close();
      }
   }
}

TEST_F(RedundancyOfTheHost, AStatusOfAnotherTypeIsReplaced) {
   auto dir = Host::lldpStatusDirIn(*manager);
   EXPECT_FALSE(dir->entityPtrHas("1"));
   for (const char* type : {"Rex::Dir", "Lldp::Status"}) {
      dir->createEntity("1", type);
      auto found = dir->entityPtr("1");
      EXPECT_EQ(Host::lldpStatusDirIn(*manager), dir);
      EXPECT_TRUE(Rex::dynamicPtr<Lldp::Status>(dir->entityPtr("1"))) << type;
      EXPECT_EQ(dir->entityPtr("1") == found, type == std::string_view("Lldp::Status"));
      dir->deleteEntity("1");
   }
}

TEST_F(RedundancyOfTheHost, WhatTheStoreSaysIsOlderThanTheOption) {
   begin(Role::active);
   EXPECT_EQ(status->mode(), modeActive);
   sm->close();
   begin(Role::standby);
   EXPECT_EQ(status->mode(), modeActive);
   EXPECT_TRUE(manager->getEntity("cell/2/redundancy/status"));
   EXPECT_TRUE(manager->getEntity("hardware/cellInfo/1")) << "it is in the chassis";
}

TEST(RedundancyRestart, HasTheArgumentsAndTheRole) {
   EXPECT_THAT(Host::restartArguments({"a", "--cell", "2", "--redundancy", "active", "eth0"},
                                      Role::standby),
               ElementsAre("a", "--redundancy", "standby", "--cell", "2", "eth0"));
   EXPECT_THAT(Host::restartArguments({"a", "--redundancy=standby", "--redundancy"}, Role::active),
               ElementsAre("a", "--redundancy", "active"));
}
