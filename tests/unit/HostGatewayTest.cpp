// A gateway to the state store: what it lets be written, and whose view it shows.
#include <gmock/gmock.h>

#include "Foreign/Redundancy.h"
#include "Rex/Dir.h"
#include "host/ApiAccess.h"
#include "host/Gateway.h"
#include "host/KnownPaths.h"
#include "support/TestContext.h"

using namespace testing;

namespace {

struct HostGateway : Test {
   LldpTest::TestContext context;
   Rex::Ptr<Statestore::EntityManager> manager = Rex::make<Statestore::EntityManager>();

   void SetUp() override {
      for (const Host::KnownPath& known : Host::knownPaths()) {
         ASSERT_TRUE(manager->entityIs(known.path, known.type)) << known.path;
      }
   }
   void roleIs(int cell, Redundancy::Mode mode) {
      auto status = Rex::dynamicPtr<Redundancy::RedundancyStatus>(
          manager->getEntity("cell/" + std::to_string(cell) + "/redundancy/status"));
      status->protocolIs(Redundancy::protocolHotStandby);
      status->modeIs(mode);
   }
};

TEST_F(HostGateway, OnlyWhatNoAgentAndNoFeederWritesIsTheOperators) {
   Host::ApiAccess access = Host::ApiAccess::besideAgents(manager);
   std::vector<std::string> writable;
   for (const std::string& path : manager->paths()) {
      if (access.refusal(path).empty()) writable.push_back(path);
   }
   EXPECT_THAT(writable,
               ElementsAre("cell/1/redundancy/status", "cell/2/redundancy/status",
                           "environment/power/status/poePort", "hardware/cellInfo",
                           "identity/dot1x/status", "identity/nbrClassification/cliConfig",
                           "l2discovery/lldp/cliConfig", "l2discovery/lldp/externalTlvs",
                           "l2discovery/lldp/remTablesCliConfig", "routing/config"));
   EXPECT_THAT(access.refusal("l2discovery/lldp/status/all"), HasSubstr("by the agent"));
   EXPECT_THAT(access.refusal("cell/2/host/intfStatus"), HasSubstr("by a feeder"));
}

TEST_F(HostGateway, TheActiveSupervisorsViewCounts) {
   EXPECT_EQ(Host::Gateway::cellOfView(*manager), 1) << "nobody is there";
   Rex::dynamicPtr<Rex::Dir>(manager->getEntity("l2discovery/lldp/status/local"))
       ->createEntity("2", "Lldp::Status");
   EXPECT_EQ(Host::Gateway::cellOfView(*manager), 2) << "the only one";
   roleIs(1, Redundancy::modeActive);
   roleIs(2, Redundancy::modeStandby);
   EXPECT_EQ(Host::Gateway::cellOfView(*manager), 1);
   roleIs(1, Redundancy::modeStandby);
   roleIs(2, Redundancy::modeActive);
   EXPECT_EQ(Host::Gateway::cellOfView(*manager), 2);
}

}  // namespace
