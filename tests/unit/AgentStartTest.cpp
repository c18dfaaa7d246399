// How an agent begins: what it mounts, its ring trace, and the entry points of the module.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>

#include "Interface/SegmentPam.h"
#include "Lldp/LldpAgent/Agent.h"
#include "Rex/EntityType.h"
#include "RingLog/RingLog.h"
#include "host/KnownPaths.h"
#include "support/TestContext.h"
#include "unit/HostFeedersFolder.h"

namespace {

struct AgentStart : testing::Test {
   AgentStart() {
      context.context().runDir = folder.path;
      unsetenv("RINGLOGDIR");
   }
   ~AgentStart() override { unsetenv("RINGLOGDIR"); }
   std::string ringFile() const {
      return std::filesystem::path(RingLog::path().charPtr()).filename().string();
   }

   Host::TestFolder folder;
   LldpTest::TestContext context;
   AgentBase::CAgent::Ptr agent = AgentBase::CAgent::Ptr::adopt(agentFactory("Lldp"));
};
using AgentStartDeathTest = AgentStart;

}  // namespace

TEST_F(AgentStart, MountsByTheTable) {
   context.context().cellId = 2;
   agent = AgentBase::CAgent::Ptr::adopt(agentFactory("Lldp"));
   agent->doInit();
   EXPECT_TRUE(agent->localEntitiesCreated());
   context.settle();
   struct {
      const char* path;
      const char* type;
      const char* flags;
   } cases[] = {
       {"l2discovery/lldp/cliConfig", "Lldp::CliConfig", "r"},
       {"l2discovery/lldp/remTablesCliConfig", "Lldp::RemTablesCliConfig", "r"},
       {"cell/2/l2discovery/lldp/remTablesStatus", "Lldp::RemTablesStatus", "wf"},
       {"l2discovery/lldp/externalTlvs", "Rex::Dir", "ri"},
       {"l2discovery/lldp/config", "Lldp::Config", "w"},
       {"l2discovery/lldp/status/local", "Rex::Dir", "wif"},
       {"hardware/cellInfo", "Rex::Dir", "r"},
       {"l2discovery/lldp/status/all", "Lldp::AllStatus", "w"},
       {"l2discovery/lldp/localSystem", "Lldp::LocalSystem", "wi"},
       {"bridging/config", "Bridging::Config", "r"},
       {"bridging/hwcapabilities", "Bridging::HwCapabilities", "r"},
       {"ip/status", "Ip::Status", "r"},
       {"ip6/status", "Ip6::Status", "r"},
       {"routing/config", "Routing::Config", "r"},
       {"cell/2/sys/net/status", "System::NetStatus", "r"},
       {"hardware/entmib", "EntityMib::Status", "ri"},
       {"environment/power/status/poePort", "Rex::Dir", "ri"},
       {"identity/nbrClassification/status", "Identity::NbrClassification::Status", "w"},
       {"identity/nbrClassification/cliConfig", "Identity::NbrClassification::CliConfig", "r"},
       {"identity/dot1x/status", "Identity::Dot1x::Status", "ri"},
       {"interface/status/all", "Interface::AllIntfStatusDir", ""},
       {"cell/2/interface/status/local", "Interface::AllIntfStatusLocalDir", ""},
       {"interface/status/eth/phy/all", "Interface::AllEthPhyIntfStatusDir", ""},
       {"interface/config/eth/phy/all", "Interface::AllEthPhyIntfConfigDir", ""},
       {"interface/status/eth/lag", "Interface::EthLagIntfStatusDir", ""},
       {"kni/ns/default/status", "KernelNetInfo::Status", ""},
   };
   const auto all = Host::knownPaths();
   for (const auto& c : cases) {
      auto entity = agent->entityManager()->getEntity(c.path);
      ASSERT_TRUE(entity) << c.path;
      EXPECT_EQ(entity->entityType().name(), c.type);
      EXPECT_EQ(agent->entityManager()->mountFlags(c.path), c.flags) << c.path;
      if (!*c.flags) continue;  // the agent's alone
      auto known = std::ranges::find(all, c.path, &Host::KnownPath::path);
      ASSERT_NE(known, all.end()) << c.path << " is not read from a shared store";
      EXPECT_EQ(known->type, c.type);
      EXPECT_EQ(known->agents, c.flags[0] == 'w') << c.path;
   }
   doCleanup(agent.get());
}

TEST_F(AgentStart, RingTraceBearsTheProcessNumberUnlessAFolderIsSet) {
   agent->doInit();
   EXPECT_EQ(ringFile(), "Lldp-" + std::to_string(getpid()) + ".rl");
   agent = nullptr;
   setenv("RINGLOGDIR", folder.path.c_str(), 1);
   agent = AgentBase::CAgent::Ptr::adopt(agentFactory("Lldp"));
   agent->doInit();
   EXPECT_EQ(ringFile(), "Lldp.rl");
}

TEST_F(AgentStartDeathTest, FailedMountEndsTheProcess) {
   // Another type stands at a path.
   context.context().service<Statestore::Tree>().entityIs("bridging/config", "Routing::Config");
   agent->doInit();
   EXPECT_DEATH(context.settle(), "mountStatus == Statestore::mountSuccess_");
}
