// Which IPv6 management address the switch tells.
#include <gtest/gtest.h>

#include "support/AddressFixture.h"

using namespace Lldp;
using namespace LldpTest;
using Wirekit::IntfId;

namespace {

constexpr const char* fallback = "bridge@0";

struct Ip6Fixture : AddressFixture {
   Ip6Fixture() {
      number("Vlan1", 1);
      number("Vlan2", 2);
      startInputSm();
   }
   void nameIs(const char* name) { cliConfig->ip6MgmtAddrIntfNameIs(name); }
   void add(const char* name, const char* addr) {
      ip6Status->ipIntfStatusIs(IntfId(name))->addrIs({ip6(addr)});
   }
   void remove(const char* name, const char* addr) {
      ip6Status->ipIntfStatus(IntfId(name))->addrDel(ip6(addr));
   }
};

}  // namespace

TEST(InputIp6Address, LowestThatIsNotLinkLocal) {
   struct {
      std::vector<const char*> addrs;
      const char* told;
   } cases[] = {
       {{}, ""},
       {{"fe80::1/64"}, ""},
       {{"febf:ffff::1/10"}, ""},
       {{"fec0::1/64", "fe80::1/64"}, "fec0::1@1"},
       {{"2001:db8::2/64", "2001:db8::1/64"}, "2001:db8::1@1"},
       {{"2001:db8::1/64", "2001:db8::2/48"}, "2001:db8::1@1"},
       {{"2001:db8::1/64", "fe80::1/64", "fd00::1/8"}, "2001:db8::1@1"},
       {{"::1/128", "2001:db8::1/64"}, "::1@1"},
       // The highest address is where the search starts, and counts as none.
       {{"ffff:ffff:ffff:ffff:ffff:ffff:ffff:ffff/64"}, ""},
       {{"ffff:ffff:ffff:ffff:ffff:ffff:ffff:fffe/64"},
        "ffff:ffff:ffff:ffff:ffff:ffff:ffff:fffe@1"},
       // All zero means none, and is the lowest.
       {{"::/0", "2001:db8::1/64"}, ""},
   };
   for (const auto& c : cases) {
      Ip6Fixture input;
      input.nameIs("Vlan1");
      for (const char* addr : c.addrs) input.add("Vlan1", addr);
      EXPECT_EQ(input.told6(), c.told);
      EXPECT_EQ(input.told(), *c.told ? "" : fallback) << c.told;
      if (*c.told) {
         ManagementAddress row = input.localSystem->ip6ManagementAddress();
         EXPECT_EQ(row.ifSubtype, 2);
         EXPECT_EQ(row.key.manAddrSubtype, 2);
         EXPECT_EQ(row.key.manAddr.bytes(), 16u);
      }
   }
}

TEST(InputIp6Address, FollowsNameAndAddresses) {
   Ip6Fixture input;
   input.add("Vlan1", "2001:db8::1/64");
   input.add("Vlan1", "2001:db8::2/64");
   input.add("Vlan2", "2001:db8::9/64");
   EXPECT_EQ(input.told6(), "");  // nobody is named
   input.nameIs("Vlan1");
   EXPECT_EQ(input.told6(), "2001:db8::1@1");
   input.remove("Vlan1", "2001:db8::1/64");
   EXPECT_EQ(input.told6(), "2001:db8::2@1");
   input.nameIs("Vlan2");
   EXPECT_EQ(input.told6(), "2001:db8::9@2");
   input.nameIs("Vlan3");
   EXPECT_EQ(input.told6(), "");
   input.number("Vlan3", 3);
   input.add("Vlan3", "2001:db8::3/64");
   EXPECT_EQ(input.told6(), "2001:db8::3@3");
   input.number("Vlan3", 33);
   EXPECT_EQ(input.told6(), "2001:db8::3@33");
   input.ip6Status->ipIntfStatusDel(IntfId("Vlan3"));
   EXPECT_EQ(input.told6(), "");
   input.nameIs("Vlan1");
   input.nameIs("");
   EXPECT_EQ(input.told6(), "");
}

TEST(InputIp6Address, KeepsTheFallbackAway) {
   Ip6Fixture input;
   auto vlan = input.ip("Vlan1", 1, "10.0.0.1/24");
   input.nameIs("Vlan1");
   input.add("Vlan1", "2001:db8::1/64");
   vlan->activeAddrWithMaskIs(ip4(""));
   EXPECT_EQ(input.told(), "");
   input.nameIs("");
   EXPECT_EQ(input.told(), fallback);
   input.nameIs("Vlan1");
   EXPECT_EQ(input.told(), "");
   // A new bridge address puts its fallback beside the IPv6 address, until an address of whichever
   // interface changes: that looks at everything anew.
   input.bridging->bridgeMacAddrIs({2, 0, 0, 0, 0, 9});
   EXPECT_EQ(input.told(), fallback);
   EXPECT_EQ(input.told6(), "2001:db8::1@1");
   input.add("Vlan2", "2001:db8::9/64");
   EXPECT_EQ(input.told(), "");
}

// It is looked for ahead of the bridge's address, which does not ask for it.
TEST(InputIp6Address, FoundAtTheStartStandsBesideTheFallback) {
   AddressFixture input;
   input.number("Vlan1", 1);
   input.cliConfig->ip6MgmtAddrIntfNameIs("Vlan1");
   input.ip6Status->ipIntfStatusIs(IntfId("Vlan1"))->addrIs({ip6("2001:db8::1/64")});
   input.startInputSm();
   EXPECT_EQ(input.told6(), "2001:db8::1@1");
   EXPECT_EQ(input.told(), fallback);
   input.ip6Status->ipIntfStatus(IntfId("Vlan1"))->addrIs({ip6("2001:db8::2/64")});
   EXPECT_EQ(input.told(), "");
   input.ip6Status->ipIntfStatus(IntfId("Vlan1"))->addrDelAll();
   EXPECT_EQ(input.told6(), "");
   EXPECT_EQ(input.told(), fallback);
}

// Taking away an address where none is told does not look for the fallback.
TEST(InputIp6Address, NothingClearedBringsNoFallback) {
   Ip6Fixture input;
   input.ip("Vlan1", 1, "10.0.0.1/24")->secondaryWithMaskIs(ip4("10.0.1.1/24"), true);
   input.ipStatus->ipIntfStatusDelAll();
   ASSERT_EQ(input.told(), "");
   input.nameIs("Vlan1");
   input.nameIs("");
   EXPECT_EQ(input.told(), "");
   input.nameIs("Vlan1");
   input.add("Vlan1", "2001:db8::1/64");
   input.remove("Vlan1", "2001:db8::1/64");
   EXPECT_EQ(input.told(), fallback);
}

TEST(InputIp6AddressDeathTest, AddressOfAnInterfaceWithoutNumber) {
   Ip6Fixture input;
   input.nameIs("Vlan3");
   EXPECT_DEATH(input.add("Vlan3", "2001:db8::1/64"), "ifIndexValue >= 0");
}
