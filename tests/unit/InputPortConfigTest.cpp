// Which interfaces are ports, and how a port's configuration follows the operator.
#include <gtest/gtest.h>

#include "Lldp/LldpInputSm/IntfKinds.h"
#include "Lldp/LldpInputSm/PortConfigSync.h"
#include "support/InputFixture.h"

using namespace Lldp;
using namespace Lldp::Agent::Input;
using LldpTest::InputFixture;
using Wirekit::IntfId;

TEST(InputIntfKinds, FrontPanelAndManagementPortsAreCapable) {
   for (const char* name :
        {"Ethernet1", "Ethernet3/1", "Ethernet3/1/4", "Management1", "Management2/1"}) {
      EXPECT_TRUE(lldpCapable(IntfId(name))) << name;
   }
   for (const char* name :
        {"UnconnectedEthernet1", "Port-Channel1", "Vlan1", "Loopback0", "Ethernet", "eth0", ""}) {
      EXPECT_FALSE(lldpCapable(IntfId(name))) << name;
   }
}

TEST(InputIntfKinds, ManagementPortOfASlot) {
   EXPECT_TRUE(isLocalMgmtIntf(IntfId("Management1/1"), 1));
   EXPECT_FALSE(isLocalMgmtIntf(IntfId("Management1/1"), 2));
   EXPECT_FALSE(isLocalMgmtIntf(IntfId("Management12/1"), 1));
   EXPECT_FALSE(isLocalMgmtIntf(IntfId("Management1"), 1));
   EXPECT_FALSE(isLocalMgmtIntf(IntfId("Ethernet1/1"), 1));
}

TEST(InputPortConfig, EachFlagFeedsOneTarget) {
   auto cliConfig = Rex::make<CliConfig>();
   struct {
      void (CliConfig::*flagIs)(const bool&);
      uint32_t enabled, mgmtAddr, portVlan, dot3, tia;
   } cases[] = {
       {&CliConfig::tlvPortDescIs, 0x01, 0, 0, 0, 0},
       {&CliConfig::tlvSysNameIs, 0x02, 0, 0, 0, 0},
       {&CliConfig::tlvSysDescIs, 0x04, 0, 0, 0, 0},
       {&CliConfig::tlvSysCapIs, 0x08, 0, 0, 0, 0},
       {&CliConfig::tlvMgmtAddrIs, 0, 1, 0, 0, 0},
       {&CliConfig::tlvPortVlanIs, 0, 0, 1, 0, 0},
       {&CliConfig::tlvLinkAggregationIs, 0, 0, 0, 0x04, 0},
       {&CliConfig::tlvMaximumFrameSizeIs, 0, 0, 0, 0x08, 0},
       {&CliConfig::tlvPowerViaMdiIs, 0, 0, 0, 0x02, 0},
       {&CliConfig::tlvNetworkPolicyIs, 0, 0, 0, 0, 0x02},
   };
   for (const auto& c : cases) ((*cliConfig).*c.flagIs)(false);
   for (const auto& c : cases) {
      ((*cliConfig).*c.flagIs)(true);
      EnabledTlvs enabledTlvs;
      bool mgmtAddr = false;
      bool portVlan = false;
      Dot3EnabledTlvs dot3;
      TiaEnabledTlvs tia;
      getEnabledTlvValues(cliConfig, enabledTlvs, mgmtAddr, portVlan, dot3, tia);
      EXPECT_EQ(enabledTlvs.bits, c.enabled);
      EXPECT_EQ(mgmtAddr, c.mgmtAddr);
      EXPECT_EQ(portVlan, c.portVlan);
      EXPECT_EQ(dot3.bits, c.dot3);
      EXPECT_EQ(tia.bits, c.tia);
      ((*cliConfig).*c.flagIs)(false);
   }
}

TEST(InputPortConfig, SelectionReachesEveryPort) {
   InputFixture input;
   input.startActive();
   input.intf("Ethernet1");
   input.cliConfig->tlvSysNameIs(false);
   input.intf("Ethernet2");
   for (const char* name : {"Ethernet1", "Ethernet2"}) {
      auto portConfig = input.portConfig(name);
      EXPECT_EQ(portConfig->enabledTlvs().bits, 0x0Du) << name;
      EXPECT_EQ(portConfig->dot3EnabledTlvs().bits, 0x0Eu);
      EXPECT_EQ(portConfig->tiaEnabledTlvs().bits, 0x02u);
      EXPECT_TRUE(portConfig->mgmtAddrTxEnable());
      EXPECT_TRUE(portConfig->portVlanTxEnable());
   }
}

TEST(InputPortConfig, MonitoringModeTakesTransmissionAway) {
   constexpr auto tx = AdminStatus::txOnly;
   constexpr auto rx = AdminStatus::rxOnly;
   constexpr auto both = AdminStatus::txAndRx;
   constexpr auto none = AdminStatus::disabled;
   struct {
      int mode;
      AdminStatus forTx, forRx, forBoth, forNone;
   } cases[] = {
       {0, tx, rx, both, none}, {1, tx, rx, both, none}, {2, tx, rx, both, none},
       {3, none, rx, rx, none}, {4, none, rx, rx, none}, {5, none, rx, rx, none},
       {6, tx, rx, both, none},
   };
   InputFixture input;
   IntfId port("Ethernet1");
   auto portConfig = input.config->portConfigIs(port);
   auto check = [&](AdminStatus requested, AdminStatus expected) {
      portAdminStatusIs(portConfig, requested, input.bridging, input.root);
      EXPECT_EQ(portConfig->adminStatus(), expected);
   };
   check(both, both);  // no switchport configuration
   auto row = input.bridging->switchIntfConfigIs(port);
   for (const auto& c : cases) {
      SCOPED_TRACE(c.mode);
      row->switchportModeIs(static_cast<Bridging::SwitchportMode>(c.mode));
      check(tx, c.forTx);
      check(rx, c.forRx);
      check(both, c.forBoth);
      check(none, c.forNone);
   }
}

TEST(InputPortConfig, OperatorsRowAndPortComeInAnyOrder) {
   InputFixture input;
   input.startActive();
   auto rowOf = [&](const char* name, AdminStatus adminStatus) {
      input.cliConfig->cliPortConfigIs(IntfId(name))->adminStatusIs(adminStatus);
   };
   rowOf("Ethernet1", AdminStatus::rxOnly);
   input.intf("Ethernet1");
   EXPECT_EQ(input.portConfig("Ethernet1")->adminStatus(), AdminStatus::rxOnly);
   input.intf("Ethernet2");
   EXPECT_EQ(input.portConfig("Ethernet2")->adminStatus(), AdminStatus::txAndRx);
   rowOf("Ethernet2", AdminStatus::disabled);
   EXPECT_EQ(input.portConfig("Ethernet2")->adminStatus(), AdminStatus::disabled);

   input.cliConfig->cliPortConfigDel(IntfId("Ethernet1"));
   EXPECT_EQ(input.portConfig("Ethernet1")->adminStatus(), AdminStatus::txAndRx);
   input.bridging->switchIntfConfigIs(IntfId("Ethernet2"))
       ->switchportModeIs(Bridging::switchportMonitorInOut);
   input.cliConfig->cliPortConfigDel(IntfId("Ethernet2"));
   EXPECT_EQ(input.portConfig("Ethernet2")->adminStatus(), AdminStatus::rxOnly);
}

TEST(InputPortConfig, PowerFallbackIsWrittenOnChangeAlone) {
   InputFixture input;
   input.startActive();
   auto row = input.cliConfig->cliPortConfigIs(IntfId("Ethernet1"));
   row->poeAllocatedPowerFallbackIs(154);
   input.intf("Ethernet1");
   EXPECT_EQ(input.portConfig("Ethernet1")->poeAllocatedPowerFallback(), 0u);
   row->poeAllocatedPowerFallbackIs(300);
   EXPECT_EQ(input.portConfig("Ethernet1")->poeAllocatedPowerFallback(), 300u);
   input.cliConfig->cliPortConfigDel(IntfId("Ethernet1"));
   EXPECT_EQ(input.portConfig("Ethernet1")->poeAllocatedPowerFallback(), 300u);
}

TEST(InputPortConfig, DescriptionComesBeforeOrAfterThePort) {
   InputFixture input;
   input.startActive();
   input.describe("Ethernet1", "first");
   input.intf("Ethernet1");
   input.intf("Ethernet2");
   input.describe("Ethernet2", Rex::String(std::string(256, 'x')));
   EXPECT_EQ(input.localPort("Ethernet1")->portDesc().value(), "first");
   EXPECT_EQ(input.localPort("Ethernet2")->portDesc().value(), Rex::String(std::string(255, 'x')));
   input.phyConfigDir->intfConfig(IntfId("Ethernet1"))->descriptionIs("");
   EXPECT_TRUE(input.localPort("Ethernet1")->portDesc().empty());
   // The last description stays when its configuration goes.
   input.phyConfigDir->intfConfigDel(IntfId("Ethernet2"));
   EXPECT_EQ(input.localPort("Ethernet2")->portDesc().bytes(), 255u);
}

TEST(InputPortConfigDeathTest, RowThatChangesItsEntityInPlace) {
   InputFixture input;
   input.startActive();
   input.describe("Ethernet1", "first");
   EXPECT_DEATH(input.describe("Ethernet1", "second"), "!ethPhyIntfConfigSmHas\\( intfId \\)");
}
