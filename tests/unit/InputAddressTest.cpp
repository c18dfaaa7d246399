// Which IPv4 management addresses the switch tells, and in which order.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "model/IntfRank.h"
#include "support/AddressFixture.h"
#include "support/ChangeLog.h"

using namespace Lldp;
using namespace LldpTest;
using Wirekit::IntfId;

namespace {

constexpr const char* fallback = "bridge@0";

}  // namespace

TEST(InputAddress, RankOfEachKindOfInterface) {
   struct {
      const char* name;
      uint32_t rank;
      const char* fault;
   } cases[] = {
       {"Loopback0", 2, nullptr},
       {"Loopback2100", 2102, nullptr},
       {"Loopback2101", 2103, "manAddrPriority->primaryPriority() < managementPriorityBase"},
       {"Management1", 2104, nullptr},
       {"Management1/1", 2114, nullptr},
       {"Management1/11", 2124, "port <= mgmtIntfPerSlot"},
       {"Management129/0", 3393, "slotId <= maxSlotId"},
       {"Management129/1", 3394, "manAddrPriority->primaryPriority() < ethernetPriorityBase"},
       {"Ethernet0", 3362, nullptr},  // the arithmetic wraps; an Ethernet port in the wrong place
       {"Ethernet1", 3394, nullptr},
       {"Ethernet5", 3522, nullptr},
       {"Ethernet3/1/2", 15684, nullptr},
       {"Ethernet1/129", 11586, "port <= phyIntfPerSlot"},
       {"Ethernet129/1", 531778, "slotId <= maxSlotId"},
       {"Ethernet129/1/1", 531779, "manAddrPriority->primaryPriority() < portChannelPriorityBase"},
       {"Port-Channel10", 531789, nullptr},
       {"Port-Channel999999", 1531778, nullptr},
       {"Vlan100", 1531879, nullptr},
       {"Vlan4095", 1535874, nullptr},
       {"Tunnel7", 0, nullptr},
   };
   for (const auto& c : cases) {
      IntfRank rank = intfRank(IntfId(c.name));
      EXPECT_EQ(rank.primaryPriority, c.rank) << c.name;
      EXPECT_STREQ(rank.fault, c.fault) << c.name;
   }
   Bridging::VlanIdOrNone vlan(7);
   ManAddrPriority rank{ManAddrType::manAddrSecondary, 0, 9, IntfId()};
   Agent::Input::intfNameToVlanIdAndManAddrPriority(IntfId("Vlan100"), &vlan, &rank);
   EXPECT_EQ(vlan.value(), 100);
   EXPECT_EQ(rank, (ManAddrPriority{ManAddrType::manAddrSecondary, 1531879, 0, IntfId("Vlan100")}));
   Agent::Input::intfNameToVlanIdAndManAddrPriority(IntfId("Ethernet1"), &vlan, &rank);
   EXPECT_EQ(vlan.value(), 0);
}

TEST(InputAddress, ActiveOnesComeByInterfaceAndSecondariesBehindThem) {
   AddressFixture input;
   auto loopback = input.ip("Loopback0", 50, "10.0.0.50/32");
   loopback->secondaryWithMaskIs(ip4("10.0.0.52/32"), true);
   input.startInputSm();  // finds them
   input.ip("Vlan9", 40, "10.0.0.40/24")->secondaryWithMaskIs(ip4("9.0.0.1/8"), true);
   input.ip("Port-Channel2", 30, "10.0.0.30/24");
   input.ip("Ethernet10", 21, "10.0.0.21/24");
   input.ip("Ethernet9", 20, "10.0.0.20/24");
   input.ip("Management1", 10, "10.0.0.10/24");
   loopback->secondaryWithMaskIs(ip4("10.0.0.51/32"), true);
   EXPECT_EQ(input.told(),
             "10.0.0.50@50 10.0.0.10@10 10.0.0.20@20 10.0.0.21@21 10.0.0.30@30 10.0.0.40@40 "
             "10.0.0.51@50 10.0.0.52@50 9.0.0.1@40");
}

TEST(InputAddress, AbsentWithoutAddressMaskNumberOrVrf) {
   AddressFixture input;
   input.startInputSm();
   EXPECT_EQ(input.told(), fallback);
   struct {
      const char* active;
      const char* vrf;  // null for an interface without a layer-3 side
      const char* toldVrf;
      int32_t number;
      bool told;
   } cases[] = {
       {"10.0.0.1/24", "default", "default", 5, true},
       {"", "default", "default", 5, false},
       {"0.0.0.0/24", "default", "default", 5, false},
       {"10.0.0.1/0", "default", "default", 5, false},
       {"10.0.0.1/24", "Default", "default", 5, false},
       {"10.0.0.1/24", "", "default", 5, false},
       {"10.0.0.1/24", nullptr, "default", 5, false},
       {"10.0.0.1/24", nullptr, "", 5, true},
       {"10.0.0.1/24", "", "", 5, true},
       {"10.0.0.1/24", "default", "default", 0, false},
   };
   for (const auto& c : cases) {
      input.cliConfig->mgmtAddrVrfIs(vrfName(c.toldVrf));
      EXPECT_EQ(input.status->mgmtAddrVrf().value(), c.toldVrf);
      auto row = input.ipStatus->ipIntfStatusIs(IntfId("Vlan1"));
      if (c.vrf) row->l3StatusIs(input.l3(c.vrf));
      row->activeAddrWithMaskIs(ip4(c.active));
      input.number("Vlan1", c.number);
      EXPECT_EQ(input.told(), c.told ? "10.0.0.1@5" : fallback)
          << c.active << " " << (c.vrf ? c.vrf : "no VRF") << " " << c.toldVrf;
      input.ipStatus->ipIntfStatusDel(IntfId("Vlan1"));
      input.intfDir->intfStatusDel(IntfId("Vlan1"));
      EXPECT_EQ(input.told(), fallback);
   }
}

TEST(InputAddress, VrfMovesWithItsAddresses) {
   AddressFixture input;
   input.startInputSm();
   auto vlan = input.ip("Vlan1", 1, "10.0.0.1/24");
   vlan->secondaryWithMaskIs(ip4("10.0.1.1/24"), true);
   input.ip("Vlan2", 2, "10.0.0.2/24")->l3Status()->vrfIs(vrfName("red"));
   EXPECT_EQ(input.told(), "10.0.0.1@1 10.0.1.1@1");
   input.cliConfig->mgmtAddrVrfIs(vrfName("red"));
   EXPECT_EQ(input.told(), "10.0.0.2@2");
   vlan->l3Status()->vrfIs(vrfName("red"));
   EXPECT_EQ(input.told(), "10.0.0.1@1 10.0.0.2@2 10.0.1.1@1");
   input.cliConfig->mgmtAddrVrfIs(vrfName("blue"));
   EXPECT_EQ(input.told(), fallback);
}

TEST(InputAddress, FirstHolderKeepsAnAddressAndTheLowestWaiterInheritsIt) {
   AddressFixture input;
   input.startInputSm();
   auto first = input.ip("Vlan40", 40, "10.0.0.1/24");
   input.ip("Vlan30", 30, "10.0.0.1/24");
   input.ip("Vlan4", 4, "10.0.0.1/16");       // another network, the same address
   input.ip("Loopback0", 50, "10.0.0.1/32");  // whatever its rank
   EXPECT_EQ(input.told(), "10.0.0.1@40");
   EXPECT_EQ(input.waiting("10.0.0.1"), "Loopback0 Vlan4 Vlan30");
   input.ipStatus->ipIntfStatusDel(IntfId("Loopback0"));
   EXPECT_EQ(input.waiting("10.0.0.1"), "Vlan4 Vlan30");
   first->activeAddrWithMaskIs(ip4("10.0.0.2/24"));
   EXPECT_EQ(input.told(), "10.0.0.1@4 10.0.0.2@40");
   EXPECT_EQ(input.waiting("10.0.0.1"), "Vlan30");
   input.intfDir->intfStatusDel(IntfId("Vlan4"));
   EXPECT_EQ(input.told(), "10.0.0.1@30 10.0.0.2@40");
   EXPECT_EQ(input.root->skippedAddrs(), 0u);
}

// A waiter that took another address stays listed for the first one. When that becomes free, it
// looks at its address anew, and for a moment gives up the one it has: whoever waits for it gets
// it.
TEST(InputAddress, FormerWaiterLosesItsAddressToItsOwnWaiters) {
   AddressFixture input;
   input.startInputSm();
   auto holder = input.ip("Vlan1", 1, "10.0.0.1/24");
   auto waiter = input.ip("Vlan2", 2, "10.0.0.1/24");
   waiter->activeAddrWithMaskIs(ip4("10.0.0.2/24"));
   EXPECT_EQ(input.waiting("10.0.0.1"), "Vlan2");
   input.ip("Vlan3", 3, "10.0.0.2/24");
   EXPECT_EQ(input.told(), "10.0.0.1@1 10.0.0.2@2");
   holder->activeAddrWithMaskIs(ip4(""));
   EXPECT_EQ(input.told(), "10.0.0.2@3");
   EXPECT_EQ(input.waiting("10.0.0.2"), "Vlan2");
}

// Two interfaces, each listed for the address that the other one has: what one gives up would make
// the other give up its own, and so on without end. Whoever is giving up is not asked again.
TEST(InputAddress, InterfacesThatWaitForOneAnotherComeToAnEnd) {
   AddressFixture input;
   input.startInputSm();
   auto a = input.ip("Vlan1", 1, "10.0.0.1/24");
   auto b = input.ip("Vlan2", 2, "10.0.0.1/24");  // listed for 10.0.0.1
   b->activeAddrWithMaskIs(ip4("10.0.0.2/24"));
   a->activeAddrWithMaskIs(ip4("10.0.0.2/24"));  // listed for 10.0.0.2
   a->activeAddrWithMaskIs(ip4("10.0.0.1/24"));
   EXPECT_EQ(input.waiting("10.0.0.1"), "Vlan2");
   EXPECT_EQ(input.waiting("10.0.0.2"), "Vlan1");
   a->activeAddrWithMaskIs(ip4("10.0.0.3/24"));
   EXPECT_EQ(input.told(), "10.0.0.3@1 10.0.0.2@2");
   b->activeAddrWithMaskIs(ip4("10.0.0.4/24"));
   EXPECT_EQ(input.told(), "10.0.0.3@1 10.0.0.4@2");
   input.ipStatus->ipIntfStatusDelAll();
   EXPECT_EQ(input.told(), fallback);
}

TEST(InputAddress, PromotedSecondaryKeepsItsRowInWhicheverOrder) {
   for (int order = 0; order < 4; ++order) {
      SCOPED_TRACE(order);
      AddressFixture input;
      input.startInputSm();
      auto vlan = input.ip("Vlan1", 1, "10.0.0.1/24");
      vlan->secondaryWithMaskIs(ip4("10.0.0.2/24"), true);
      ASSERT_EQ(input.told(), "10.0.0.1@1 10.0.0.2@1");
      auto log = Rex::make<ChangeLog>(std::vector<Rex::Ptr<const Rex::Entity>>{input.localSystem});
      auto promote = [&] { vlan->activeAddrWithMaskIs(ip4("10.0.0.2/24")); };
      auto remove = [&] { vlan->secondaryWithMaskDel(ip4("10.0.0.2/24")); };
      if (order == 0) promote(), remove();
      if (order == 1) remove(), promote();
      // In one reaction, neither is told before both are done.
      if (order == 2) Rex::Dispatcher::run([&] { remove(), promote(); });
      if (order == 3) Rex::Dispatcher::run([&] { promote(), remove(); });
      EXPECT_EQ(input.told(), "10.0.0.2@1");
      size_t primaries = 0;
      for (auto [rank, key] : input.localSystem->managementAddressPrio()) {
         primaries += rank.type == ManAddrType::manAddrPrimary;
      }
      EXPECT_EQ(primaries, 1u);
      size_t rows = 0;
      for (const auto& change : log->take()) {
         rows += change.starts_with("LocalSystem.managementAddress[");
      }
      EXPECT_EQ(rows, order == 1 ? 3u : 1u);  // the old address's row goes in any case
      vlan->activeAddrWithMaskIs(ip4(""));
      EXPECT_EQ(input.told(), fallback);
   }
}

// An address that comes later brings no secondaries along: they wait for a change of the VRF or of
// their own. The walk of a VRF does not look at their value.
TEST(InputAddress, SecondariesWithoutAnActiveAddressWait) {
   AddressFixture input;
   input.startInputSm();
   auto vlan = input.ip("Vlan1", 1);
   vlan->secondaryWithMaskIs(ip4("10.0.1.1/24"), true);
   vlan->secondaryWithMaskIs(ip4("10.0.1.2/24"), false);
   vlan->activeAddrWithMaskIs(ip4("10.0.0.1/24"));
   EXPECT_EQ(input.told(), "10.0.0.1@1");
   vlan->secondaryWithMaskIs(ip4("10.0.1.3/24"), true);
   EXPECT_EQ(input.told(), "10.0.0.1@1 10.0.1.3@1");
   vlan->secondaryWithMaskIs(ip4("10.0.1.3/24"), false);
   EXPECT_EQ(input.told(), "10.0.0.1@1");
   input.cliConfig->mgmtAddrVrfIs(vrfName("red"));
   EXPECT_EQ(input.told(), fallback);
   input.cliConfig->mgmtAddrVrfIs(vrfName("default"));
   EXPECT_EQ(input.told(), "10.0.0.1@1 10.0.1.1@1 10.0.1.2@1 10.0.1.3@1");
   vlan->activeAddrWithMaskIs(ip4(""));
   EXPECT_EQ(input.told(), fallback);
}

// Secondaries are not compared with other interfaces': both have a rank for the one row, which
// names the interface that came last and goes with the first that leaves.
TEST(InputAddress, SharedSecondaryHasTwoRanksAndOneRow) {
   AddressFixture input;
   input.startInputSm();
   auto a = input.ip("Vlan1", 1, "10.0.0.1/24");
   auto b = input.ip("Vlan2", 2, "10.0.0.2/24");
   b->secondaryWithMaskIs(ip4("10.0.1.1/24"), true);
   a->secondaryWithMaskIs(ip4("10.0.1.1/24"), true);
   EXPECT_EQ(input.told(), "10.0.0.1@1 10.0.0.2@2 10.0.1.1@1 10.0.1.1@1");
   b->secondaryWithMaskDel(ip4("10.0.1.1/24"));
   EXPECT_EQ(input.told(), "10.0.0.1@1 10.0.0.2@2 10.0.1.1@-");
   a->secondaryWithMaskDel(ip4("10.0.1.1/24"));
   EXPECT_EQ(input.told(), "10.0.0.1@1 10.0.0.2@2");
}

TEST(InputAddress, FallbackStandsInAndMakesWayFirst) {
   AddressFixture input;
   input.startInputSm();
   auto vlan = input.ip("Vlan1", 1, "10.0.0.1/24");
   EXPECT_EQ(input.told(), "10.0.0.1@1");
   auto log = Rex::make<ChangeLog>(std::vector<Rex::Ptr<const Rex::Entity>>{input.localSystem});
   vlan->activeAddrWithMaskIs(ip4("10.0.0.2/24"));
   EXPECT_EQ(input.told(), "10.0.0.2@1");
   // The rank goes before the row, and the fallback comes and goes within the one reaction.
   std::vector<std::string> kinds;
   for (const auto& change : log->take()) kinds.push_back(change.substr(0, change.find('[')));
   EXPECT_THAT(kinds, testing::ElementsAre(
                          "LocalSystem.managementAddressPrio", "LocalSystem.managementAddress",
                          "LocalSystem.managementAddressPrio", "LocalSystem.managementAddress"));
   vlan->activeAddrWithMaskIs(ip4(""));
   EXPECT_EQ(input.told(), fallback);
   EXPECT_EQ(input.localSystem->managementAddresss(), 1u);
   input.bridging->bridgeMacAddrIs({2, 0, 0, 0, 0, 9});
   EXPECT_EQ(input.localSystem->managementAddresss(), 1u);
   EXPECT_EQ(input.told(), fallback);
}

// A machine looks for its fallback while its own secondaries still have ranks, and nobody looks
// afterwards.
TEST(InputAddress, ClosingTheOnlyInterfaceWithSecondariesLeavesNothing) {
   AddressFixture input;
   input.startInputSm();
   input.ip("Vlan1", 1, "10.0.0.1/24")->secondaryWithMaskIs(ip4("10.0.1.1/24"), true);
   input.ipStatus->ipIntfStatusDel(IntfId("Vlan1"));
   EXPECT_EQ(input.told(), "");
   input.ip("Vlan1", 1, "10.0.0.1/24");
   input.ipStatus->ipIntfStatusDel(IntfId("Vlan1"));
   EXPECT_EQ(input.told(), fallback);
}

// A secondary that was never told has the default rank on record, which is the fallback's.
TEST(InputAddress, RemovalOfAnUntoldSecondaryTakesTheFallback) {
   AddressFixture input;
   input.startInputSm();
   auto vlan = input.ip("Vlan1", 1);
   vlan->secondaryWithMaskIs(ip4("10.0.1.1/24"), true);
   EXPECT_EQ(input.told(), fallback);
   vlan->secondaryWithMaskDel(ip4("10.0.1.1/24"));
   EXPECT_EQ(input.told(), "");
   vlan->activeAddrWithMaskIs(ip4("10.0.0.1/24"));
   vlan->activeAddrWithMaskIs(ip4(""));
   EXPECT_EQ(input.told(), fallback);
}

TEST(InputAddress, NamedInterfaceComesFirst) {
   AddressFixture input;
   input.startInputSm();
   input.ip("Loopback0", 50, "10.0.0.50/32");
   auto vlan = input.ip("Vlan1", 1, "10.0.0.1/24");
   vlan->secondaryWithMaskIs(ip4("10.0.1.1/24"), true);
   input.ip("Vlan2", 2);
   struct {
      MgmtAddrTxMode mode;
      const char* intfName;
      uint32_t most;
      const char* told;
   } cases[] = {
       {MgmtAddrTxMode::mgmtAddrTxModeAll, "", 4294967295, "10.0.0.50@50 10.0.0.1@1 10.0.1.1@1"},
       // Its secondaries stay where they are.
       {MgmtAddrTxMode::mgmtAddrTxModeIntfName, "Vlan1", 1, "10.0.0.1@1 10.0.0.50@50 10.0.1.1@1"},
       {MgmtAddrTxMode::mgmtAddrTxModeIntfName, "Loopback0", 1,
        "10.0.0.50@50 10.0.0.1@1 10.0.1.1@1"},
       // Without an address, it silences nobody.
       {MgmtAddrTxMode::mgmtAddrTxModeIntfName, "Vlan2", 1, "10.0.0.50@50 10.0.0.1@1 10.0.1.1@1"},
       {MgmtAddrTxMode::mgmtAddrTxModeIntfName, "eth0", 1, "10.0.0.50@50 10.0.0.1@1 10.0.1.1@1"},
       {MgmtAddrTxMode::mgmtAddrTxModeIntfName, "Vlan1", 1, "10.0.0.1@1 10.0.0.50@50 10.0.1.1@1"},
       {MgmtAddrTxMode::mgmtAddrTxModeBest, "Vlan1", 1, "10.0.0.50@50 10.0.0.1@1 10.0.1.1@1"},
   };
   for (const auto& c : cases) {
      input.option(c.mode, c.intfName);
      EXPECT_EQ(input.config->maxTxMgmtAddrs(), c.most);
      EXPECT_EQ(input.told(), c.told) << c.intfName;
   }
   input.option(MgmtAddrTxMode::mgmtAddrTxModeIntfName, "Vlan1");
   vlan->activeAddrWithMaskIs(ip4("10.0.0.9/24"));  // comes to be first at once
   EXPECT_EQ(input.told(), "10.0.0.9@1 10.0.0.50@50 10.0.1.1@1");
   vlan->activeAddrWithMaskIs(ip4(""));
   EXPECT_EQ(input.told(), "10.0.0.50@50");
}

// An interface of a kind without a rank: what stands is not moved, but what comes goes to the
// front.
TEST(InputAddress, NamedInterfaceOfAnUnknownKind) {
   AddressFixture input;
   input.startInputSm();
   auto tunnel = input.ip("Tunnel1", 7, "10.0.0.7/24");
   auto rank = [&] {
      for (auto [rank, key] : input.localSystem->managementAddressPrio()) return rank;
      return ManAddrPriority{};
   };
   input.option(MgmtAddrTxMode::mgmtAddrTxModeIntfName, "Tunnel1");
   EXPECT_EQ(rank(), (ManAddrPriority{ManAddrType::manAddrPrimary, 0, 0, IntfId("Tunnel1")}));
   tunnel->l3Status()->vrfIs(vrfName("red"));
   // Its rank is not found where it was written, and the row stays.
   EXPECT_EQ(rank(), (ManAddrPriority{ManAddrType::manAddrPrimary, 0, 0, IntfId("Tunnel1")}));
   tunnel->l3Status()->vrfIs(vrfName("default"));
}

TEST(InputAddress, ReplacedStatusIsReadAnew) {
   AddressFixture input;
   input.startInputSm();
   input.ip("Vlan1", 1, "10.0.0.1/24");
   Rex::Dispatcher::run([&] {
      input.ipStatus->ipIntfStatusDel(IntfId("Vlan1"));
      input.ip("Vlan1", 1, "10.0.0.2/24");
   });
   EXPECT_EQ(input.told(), "10.0.0.2@1");
   input.number("Vlan2", 2);
   input.ipStatus->ipIntfStatusDel(IntfId("Vlan2"));  // nobody has it
   input.intfDir->intfStatusDel(IntfId("Vlan1"));
   EXPECT_EQ(input.told(), fallback);
}

TEST(InputAddressDeathTest, AddressOfAnInterfaceThatLostItsNumber) {
   AddressFixture input;
   input.startInputSm();
   auto vlan = input.ip("Vlan1", 1);
   input.intfDir->intfStatus(IntfId("Vlan1"))->ifIndexIs(0);
   EXPECT_DEATH(vlan->activeAddrWithMaskIs(ip4("10.0.0.1/24")), "ifIndex >= 0");
   EXPECT_DEATH(input.option(static_cast<MgmtAddrTxMode>(3)),
                "cliConfig\\(\\)->mgmtAddrTxOption\\(\\).mgmtAddrTxMode\\(\\) == ");
}
