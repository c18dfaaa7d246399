// The operator's requests to clear the neighbour table.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/InputFixture.h"

using namespace Lldp;
using LldpTest::InputFixture;
using testing::ElementsAre;
using testing::IsEmpty;
using Wirekit::IntfId;

namespace {

struct Clear : testing::Test {
   InputFixture input;
   PortStatus::Ptr port = input.status->portStatusIs(IntfId("Ethernet1"), 0.0);

   void learn(int index) {
      RemoteSystem::Msap msap;
      msap.portIdentifier.value = PortId(Rex::format("%d", index));
      port->remoteSystemByMsapIs(port->remoteSystemIs(index, msap));
      input.status->remTablesInsertsInc(1);
   }
   void start() { input.root->remTablesClearRequestSmIs(input.remTablesCliConfig, input.root); }
   void request(double time) {
      input.remTablesCliConfig->remTablesClearRequestIs({time, "admin", "vty3"});
   }
};

}  // namespace

TEST_F(Clear, EachLaterRequestClearsOnce) {
   start();
   learn(1);
   learn(2);
   input.context.advance(50);
   request(900);
   EXPECT_EQ(port->remoteSystems(), 0u);
   EXPECT_EQ(port->remoteSystemByMsaps(), 0u);
   EXPECT_EQ(input.remTablesStatus->remTablesLastClearTime(), 900);
   EXPECT_EQ(input.status->remTablesLastChangeTime(), 1050);
   EXPECT_EQ(input.status->remTablesInserts(), 2u);
   EXPECT_EQ(input.status->remTablesDeletes(), 0u);
   EXPECT_THAT(input.context.takeLogs(),
               ElementsAre("LLDP_REMOTE_TABLES_CLEARED: LLDP neighbor table cleared by admin on "
                           "vty3"));
   learn(3);
   request(901);
   EXPECT_EQ(port->remoteSystems(), 0u);
   EXPECT_EQ(input.context.takeLogs().size(), 1u);
}

TEST_F(Clear, RequestThatIsNotLaterIsPassedOver) {
   start();
   input.remTablesStatus->remTablesLastClearTimeIs(900);
   learn(1);
   request(900);
   request(899);
   EXPECT_EQ(port->remoteSystems(), 1u);
   EXPECT_EQ(input.status->remTablesLastChangeTime(), 0);
   EXPECT_THAT(input.context.takeLogs(), IsEmpty());
}

TEST_F(Clear, StoredRequestIsCarriedOutAtTheFirstStartAlone) {
   request(900);
   learn(1);
   start();
   EXPECT_EQ(port->remoteSystems(), 0u);
   learn(2);
   start();
   EXPECT_EQ(port->remoteSystems(), 1u);
   EXPECT_EQ(input.context.takeLogs().size(), 1u);
}
