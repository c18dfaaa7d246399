// The switch's system-wide values on their way into Config and LocalSystem.
#include <gtest/gtest.h>

#include "support/InputFixture.h"

using namespace Lldp;
using LldpTest::InputFixture;

namespace {

std::string text(size_t length) {
   std::string made;
   for (size_t i = 0; i < length; ++i) made += static_cast<char>('a' + i % 26);
   return made;
}

}  // namespace

TEST(InputSm, IntervalTakesTheDelayAlong) {
   InputFixture input;
   input.startInputSm();
   struct {
      uint32_t interval;
      uint32_t txDelay;
   } cases[] = {{30, 2}, {2, 2}, {1, 1}, {0, 0}, {3, 2}, {4294967295, 2}};
   for (auto [interval, txDelay] : cases) {
      input.cliConfig->messageTxIntervalIs(interval);
      EXPECT_EQ(input.config->messageTxInterval(), interval);
      EXPECT_EQ(input.config->txDelay(), txDelay) << interval;
   }
   input.cliConfig->messageTxHoldTimeIs(70000);
   input.cliConfig->reinitDelayIs(7);
   input.cliConfig->rxTaggedPacketsDropIs(true);
   EXPECT_EQ(input.config->messageTxHoldTime(), 70000u);
   EXPECT_EQ(input.config->reinitDelay(), 7u);
   EXPECT_TRUE(input.config->rxTaggedPacketsDrop());
}

TEST(InputSm, SystemNameIsHostAndDomainCutByOctets) {
   struct {
      std::string hostname, domain, sysName;
   } cases[] = {
       {"switch", "", "switch"},
       {"switch", "example.net", "switch.example.net"},
       {"", "example.net", ".example.net"},
       {"", "", ""},
       {text(250), text(20), text(250) + ".abcd"},
       {text(300), "", text(255)},
       {text(255), "net", text(255)},
   };
   for (const auto& c : cases) {
      InputFixture input;
      input.startInputSm();
      input.netStatus->hostnameIs(Rex::String(c.hostname));
      input.netStatus->domainNameIs(Rex::String(c.domain));
      EXPECT_EQ(input.localSystem->sysName().value(), Rex::String(c.sysName));
   }
}

TEST(InputSm, DescriptionIsCut) {
   InputFixture input;
   input.sysDescr->descriptionIs(Rex::String(text(300)));
   input.startInputSm();
   EXPECT_EQ(input.localSystem->sysDesc().value(), Rex::String(text(255)));
   input.sysDescr->descriptionIs("short");
   EXPECT_EQ(input.localSystem->sysDesc().value(), "short");
}

TEST(InputSm, ChassisIsTheBridgesAddress) {
   InputFixture input;
   input.bridging->bridgeMacAddrIs({2, 0, 0xFF, 0, 0x80, 1});
   input.startInputSm();
   ChassisIdentifier id = input.localSystem->chassisIdentifier();
   EXPECT_EQ(id.subtype, ChassisIdSubtype::macAddress);
   EXPECT_EQ(id.value.value(), Rex::String("\x02\x00\xFF\x00\x80\x01", 6));
   input.bridging->bridgeMacAddrIs({2, 0, 0, 0, 0, 9});
   EXPECT_EQ(input.localSystem->chassisIdentifier().stringValue(), "02:00:00:00:00:09");
}

TEST(InputSm, RoutingMovesTheRoutersBitAlone) {
   InputFixture input;
   input.localSystem->sysCapSupportedIs(0x14);
   input.localSystem->sysCapEnabledIs(0x8104);
   input.routing->routingIs(true);
   input.startInputSm();
   EXPECT_EQ(input.localSystem->sysCapEnabled().value(), 0x8114);
   input.routing->routingIs(false);
   EXPECT_EQ(input.localSystem->sysCapEnabled().value(), 0x8104);
   EXPECT_EQ(input.localSystem->sysCapSupported().value(), 0x14);
}

TEST(InputSm, FrameSizeReachesFrontPanelPortsAlone) {
   InputFixture input;
   input.hwCapabilities->maxFrameSizeIs(9236);
   input.startActive();
   input.intf("Ethernet1");
   input.intf("Management1")->maxMtuIs(9000);
   EXPECT_EQ(input.localPort("Ethernet1")->maximumFrameSizeInfo().maxFrameSize, 9236);
   EXPECT_EQ(input.localPort("Management1")->maximumFrameSizeInfo().maxFrameSize, 9018);
   input.hwCapabilities->maxFrameSizeIs(1518);
   EXPECT_EQ(input.localPort("Ethernet1")->maximumFrameSizeInfo().maxFrameSize, 1518);
   EXPECT_EQ(input.localPort("Management1")->maximumFrameSizeInfo().maxFrameSize, 9018);
}

TEST(InputSm, OneReactionMaySwitchOnAndMakeARow) {
   InputFixture input;
   input.cliConfig->enabledIs(false);
   input.startActive();
   input.intf("Ethernet1");
   Rex::Dispatcher::run([&] {
      input.cliConfig->enabledIs(true);
      input.cliConfig->cliPortConfigIs(Wirekit::IntfId("Ethernet1"))
          ->adminStatusIs(AdminStatus::rxOnly);
   });
   EXPECT_EQ(input.portConfig("Ethernet1")->adminStatus(), AdminStatus::rxOnly);
}

TEST(InputSm, ClosingLeavesWhatWasWritten) {
   InputFixture input;
   input.netStatus->hostnameIs("switch");
   input.startActive();
   input.intf("Ethernet1");
   input.describe("Ethernet1", "uplink");
   input.cliConfig->cliPortConfigIs(Wirekit::IntfId("Ethernet1"))
       ->adminStatusIs(AdminStatus::disabled);
   input.root->inputSmDel();
   EXPECT_EQ(input.localSystem->sysName().value(), "switch");
   EXPECT_EQ(input.localPort("Ethernet1")->portDesc().value(), "uplink");
   // The operator's row ended with the machine that stood for it.
   EXPECT_EQ(input.portConfig("Ethernet1")->adminStatus(), AdminStatus::txAndRx);
   input.cliConfig->messageTxIntervalIs(5);
   EXPECT_EQ(input.config->messageTxInterval(), 30u);
}
