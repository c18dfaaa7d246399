// When a port's rows come and go, on an active and on a standby supervisor.
#include <gtest/gtest.h>

#include "support/InputFixture.h"

using namespace Lldp;
using LldpTest::InputFixture;
using Wirekit::IntfId;

TEST(InputPortLife, ForwardingModelDecides) {
   struct {
      int model;
      const char* without;
      const char* with;
   } cases[] = {
       {0, "", ""}, {1, "", ""}, {2, "", "CLSD"}, {3, "CLSD", "CLSD"}, {4, "CLSD", "CLSD"}};
   for (const auto& c : cases) {
      InputFixture input;
      input.startActive();
      input.intf("Ethernet1", static_cast<Interface::IntfForwardingModel>(c.model));
      EXPECT_EQ(input.rows("Ethernet1"), c.without) << c.model;
      input.dot1x->lldpBypassIs(true);
      EXPECT_EQ(input.rows("Ethernet1"), c.with) << c.model;
      input.dot1x->lldpBypassIs(false);
      EXPECT_EQ(input.rows("Ethernet1"), c.without) << c.model;
   }
}

TEST(InputPortLife, PortThatStaysKeepsItsStatus) {
   InputFixture input;
   input.startActive();
   auto row = input.intf("Ethernet1");
   auto status = input.portStatus("Ethernet1");
   EXPECT_EQ(status->creationTime(), input.context.now());
   status->rxFramesTotalInc(5);
   input.context.advance(10);
   row->forwardingModelIs(Interface::intfForwardingRouted);
   EXPECT_EQ(input.portStatus("Ethernet1"), status);
   row->forwardingModelIs(Interface::intfForwardingUnknown);
   EXPECT_EQ(input.rows("Ethernet1"), "");
   row->forwardingModelIs(Interface::intfForwardingBridged);
   EXPECT_EQ(input.rows("Ethernet1"), "CLSD");
   EXPECT_EQ(input.portStatus("Ethernet1")->rxFramesTotal(), 0u);
   EXPECT_EQ(input.portStatus("Ethernet1")->creationTime(), input.context.now());
}

TEST(InputPortLife, RowsAreWholeWhenThePortIsDesired) {
   InputFixture input;
   input.hwCapabilities->maxFrameSizeIs(9236);
   input.describe("Ethernet3/1", "uplink");
   input.cliConfig->cliPortConfigIs(IntfId("Ethernet3/1"))->adminStatusIs(AdminStatus::rxOnly);
   input.intf("Ethernet3/1");
   input.startActive();
   auto port = input.localPort("Ethernet3/1");
   EXPECT_EQ(port->portIdentifier().subtype, PortIdSubtype::interfaceName);
   EXPECT_EQ(port->portIdentifier().value.value(), "Ethernet3/1");
   EXPECT_EQ(port->portDesc().value(), "uplink");
   EXPECT_EQ(port->linkAggregationInfo(), (LinkAggregationInfo{LinkAggStatusMap(1), 0}));
   EXPECT_EQ(port->maximumFrameSizeInfo().maxFrameSize, 9236);
   EXPECT_TRUE(port->localPortPoeInfo());
   EXPECT_EQ(input.portConfig("Ethernet3/1")->adminStatus(), AdminStatus::rxOnly);
}

TEST(InputPortLife, InterfaceLeaves) {
   InputFixture input;
   input.startActive();
   input.intf("Ethernet1");
   input.intf("Ethernet2", Interface::intfForwardingDiscard);
   input.intf("Vlan1");
   EXPECT_EQ(input.rows("Vlan1"), "");
   for (const char* name : {"Ethernet1", "Ethernet2", "Vlan1"}) {
      input.phyDir->intfStatusDel(IntfId(name));
      EXPECT_EQ(input.rows(name), "") << name;
   }
   EXPECT_TRUE(input.root->activeEthIntfStatusDirSm()->ethPhyIntfStatusSm().empty());
}

TEST(InputPortLife, ManagementPortFollowsItsMtu) {
   InputFixture input;
   input.startActive();
   auto row = input.intf("Management1");
   EXPECT_EQ(input.localPort("Management1")->maximumFrameSizeInfo().maxFrameSize, 1518);
   EXPECT_EQ(input.localPort("Management1")->linkAggregationInfo().status.value(), 0);
   row->maxMtuIs(9000);
   EXPECT_EQ(input.localPort("Management1")->maximumFrameSizeInfo().maxFrameSize, 9018);
   row->forwardingModelIs(Interface::intfForwardingDiscard);
   row->maxMtuIs(2000);  // nobody is there to take it
   row->forwardingModelIs(Interface::intfForwardingBridged);
   EXPECT_EQ(input.localPort("Management1")->maximumFrameSizeInfo().maxFrameSize, 2018);
}

TEST(InputPortLife, OtherSupervisorServesItsOwnManagementPort) {
   for (int cell : {1, 2}) {
      InputFixture input;
      input.context.context().cellId = cell;
      input.startActive();
      input.intf("Management1/1");
      input.intf("Management2/1");
      input.intf("Management1");
      EXPECT_EQ(input.rows("Management1/1"), cell == 1 ? "CLSD" : "CL");
      EXPECT_EQ(input.rows("Management2/1"), cell == 2 ? "CLSD" : "CL");
      EXPECT_EQ(input.rows("Management1"), "CLSD");
   }
}

TEST(InputPortLife, StandbyWaitsForTheActiveSupervisorsRows) {
   InputFixture input;
   input.context.context().cellId = 2;
   input.intf("Ethernet1");
   input.intf("Management1/1");
   input.intf("Management2/1");
   input.startStandby();
   EXPECT_EQ(input.rows("Ethernet1"), "");
   EXPECT_EQ(input.rows("Management1/1"), "");
   EXPECT_EQ(input.rows("Management2/1"), "S");

   IntfId own("Management2/1");
   input.localSystem->localPortIs(own);
   EXPECT_EQ(input.rows("Management2/1"), "LS");
   input.config->portConfigIs(own);
   EXPECT_EQ(input.rows("Management2/1"), "CLSD");
   input.localSystem->localPortDel(own);
   EXPECT_EQ(input.rows("Management2/1"), "CS");
   input.localSystem->localPortIs(own);
   input.phyDir->intfStatusDel(own);
   EXPECT_EQ(input.rows("Management2/1"), "CL");

   input.config->portConfigIs(IntfId("Ethernet1"));
   input.localSystem->localPortIs(IntfId("Ethernet1"));
   EXPECT_EQ(input.rows("Ethernet1"), "CL");
}

TEST(InputPortLifeDeathTest, ReplacedInterfaceHasToGoFirst) {
   InputFixture input;
   input.startActive();
   input.intf("Ethernet1");
   EXPECT_DEATH(input.intf("Ethernet1"), "standing->intfStatus\\(\\) == intfStatus");
}

TEST(InputPortLifeDeathTest, BypassIsNoMatterOfAStandby) {
   InputFixture input;
   input.startStandby();
   EXPECT_DEATH(input.dot1x->lldpBypassIs(true), "activeEthIntfStatusDirSm");
}
