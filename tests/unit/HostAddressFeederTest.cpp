// Addresses of devices on their way to the neighbours.
#include <gtest/gtest.h>
#include <linux/rtnetlink.h>

#include <sstream>

#include "unit/HostFedSwitch.h"

namespace Host {
namespace {

using Wirekit::IntfId;

Link member(Link link, int32_t master) {
   link.master = master;
   return link;
}
Link vlan(int32_t ifIndex, uint16_t id) {
   Link link = device(ifIndex, "br0." + std::to_string(id), "vlan");
   link.vlanId = id;
   return link;
}

TEST(AddressFeeder, theActiveAddressAndTheOthers) {
   // "s" secondary, "h" host scope, "l" link scope.
   struct {
      const char *addresses, *active, *secondaries;
   } cases[] = {
       {"", "0.0.0.0/0", ""},
       {"10.0.0.2/24 10.0.0.1/24s", "10.0.0.2/24", "10.0.0.1/24 "},
       {"10.0.0.2/24s 10.1.0.1/24", "10.1.0.1/24", "10.0.0.2/24 "},
       {"10.0.0.2/24s 10.0.0.1/24s", "10.0.0.2/24", "10.0.0.1/24 "},
       {"169.254.0.9/16l 10.0.0.1/24", "10.0.0.1/24", "169.254.0.9/16 "},
       {"127.0.0.1/8h 10.9.9.9/32", "10.9.9.9/32", ""},
       {"127.0.0.2/8 10.0.0.3/24h 10.0.0.1/0", "0.0.0.0/0", ""},
       {"10.0.0.1/24 10.0.0.1/16 10.0.0.2/16s", "10.0.0.1/24", "10.0.0.2/16 "},
   };
   for (const auto& [addresses, active, secondaries] : cases) {
      std::vector<Ip4Address> ip4;
      std::istringstream words(addresses);
      for (std::string word; words >> word;) {
         Ip4Address address;
         char last = word.back();
         if (last == 's') address.secondary = true;
         if (last == 'h') address.scope = RT_SCOPE_HOST;
         if (last == 'l') address.scope = RT_SCOPE_LINK;
         if (!isdigit(last)) word.pop_back();
         address.addr = addr<Wirekit::IpAddrWithMask>(word);
         ip4.push_back(address);
      }
      Ip4Selection selection = selected(ip4);
      std::string others;
      for (const auto& addr : selection.secondaries) others += addr.stringValue().stdString() + " ";
      EXPECT_EQ(selection.active.stringValue(), active) << addresses;
      EXPECT_EQ(others, secondaries) << addresses;
   }
}

class AddressFeederTest : public testing::Test {
 protected:
   AddressFeederTest() {
      all(Lldp::MgmtAddrTxMode::mgmtAddrTxModeAll);
      localPorts();
   }
   void all(Lldp::MgmtAddrTxMode mode, const char* intf = "") {
      sw.cliConfig->mgmtAddrTxOptionIs({mode, Rex::String(intf)});
   }
   void localPorts() { EXPECT_TRUE(sw.localPort("Ethernet1")); }
   // What is told after everything that changed since.
   std::string told() {
      sw.network.addresses.tell();
      return sw.told();
   }

   FedSwitch sw{{device(1, "lo", ""), device(2, "a"), device(3, "b"), device(4, "br0", "bridge"),
                 vlan(5, 100), device(6, "red", "vrf"), device(7, "dummy3", "dummy")}};
};

TEST_F(AddressFeederTest, throughAdditionsAndRemovals) {
   EXPECT_EQ(told(), "mac");
   sw.ip4(5, "10.100.0.1/24");
   EXPECT_EQ(told(), "10.100.0.1");
   sw.ip4(2, "10.0.0.2/24");
   sw.ip4(2, "10.0.0.1/24", true);
   sw.ip4(7, "10.9.9.9/32");
   EXPECT_EQ(told(), "10.9.9.9 10.0.0.2 10.100.0.1 10.0.0.1");
   auto row = sw.localSystem->managementAddress(
       {1, Lldp::ManAddress(Rex::String(std::string("\x0a\x09\x09\x09")))});
   EXPECT_EQ(row.ifNumber, 7u);
   all(Lldp::MgmtAddrTxMode::mgmtAddrTxModeBest);
   EXPECT_EQ(told(), "10.9.9.9");
   all(Lldp::MgmtAddrTxMode::mgmtAddrTxModeIntfName, "Vlan100");
   EXPECT_EQ(told(), "10.100.0.1");
   all(Lldp::MgmtAddrTxMode::mgmtAddrTxModeAll);

   sw.noIp4(7, "10.9.9.9/32");
   sw.noIp4(2, "10.0.0.1/24");
   EXPECT_EQ(told(), "10.0.0.2 10.100.0.1");
   // The mask alone changes; the kernel has both for a moment.
   sw.ip4(2, "10.0.0.2/16");
   sw.noIp4(2, "10.0.0.2/24");
   EXPECT_EQ(told(), "10.0.0.2 10.100.0.1");
   sw.ip4(3, "10.0.0.2/24");
   EXPECT_EQ(told(), "10.0.0.2 10.100.0.1") << "another has it";
   sw.noIp4(2, "10.0.0.2/16");
   EXPECT_EQ(told(), "10.0.0.2 10.100.0.1");
   sw.network.addresses.addressesAre({});
   EXPECT_EQ(told(), "mac");
}

// All that the kernel says in one turn is one reaction, whoever has the address before and after.
TEST_F(AddressFeederTest, anAddressMovesBetweenInterfaces) {
   for (auto [from, to] : {std::pair(2, 3), {3, 2}}) {
      for (int kinds = 0; kinds < 8; ++kinds) {
         bool wasSecondary = kinds & 1, isSecondary = kinds & 2, hadRow = kinds & 4;
         sw.network.addresses.addressesAre({});
         sw.ip4(from, "10.1.0.1/24");
         sw.ip4(from, "10.1.0.9/24", wasSecondary);
         if (!wasSecondary) sw.noIp4(from, "10.1.0.1/24");
         if (hadRow || isSecondary) sw.ip4(to, "10.2.0.1/24");
         told();
         sw.noIp4(from, "10.1.0.9/24");
         if (!isSecondary) sw.noIp4(to, "10.2.0.1/24");
         sw.ip4(to, "10.1.0.9/24", isSecondary);
         std::string now = told();
         EXPECT_NE(now.find("10.1.0.9"), std::string::npos)
             << from << " to " << to << ", kinds " << kinds << ": " << now;
      }
   }
}

TEST_F(AddressFeederTest, interfacesThatGoAndVrfs) {
   sw.ip4(2, "10.0.0.2/24");
   sw.ip4(2, "10.0.0.1/24", true);
   sw.ip4(5, "10.100.0.1/24");
   EXPECT_EQ(told(), "10.0.0.2 10.100.0.1 10.0.0.1");
   sw.network.links.linkIs(member(device(2, "a"), 6));
   EXPECT_EQ(told(), "10.100.0.1");
   sw.cliConfig->mgmtAddrVrfIs(L3::VrfName(Rex::String("red")));
   EXPECT_EQ(told(), "10.0.0.2 10.0.0.1");
   sw.network.links.linkIs(device(6, "blue", "vrf"));
   EXPECT_EQ(told(), "mac");
   sw.network.links.linkIs(device(6, "red", "vrf"));
   EXPECT_EQ(told(), "10.0.0.2 10.0.0.1");

   // The device goes with all that it has, also when that was not yet said of its addresses.
   sw.noIp4(2, "10.0.0.2/24");
   sw.network.links.linkDel(2);
   EXPECT_EQ(told(), "mac");
   EXPECT_FALSE(sw.at<Ip::Status>("ip/status")->ipIntfStatusHas(IntfId("Ethernet1")));
   sw.network.addresses.deviceDel(2);
   // It returns, and its addresses may be known before it is.
   sw.ip4(9, "10.0.0.7/24");
   EXPECT_EQ(told(), "mac");
   sw.network.links.linkIs(member(device(9, "a"), 6));
   EXPECT_EQ(told(), "10.0.0.7");
}

TEST_F(AddressFeederTest, theIp6AddressOfTheNamedInterface) {
   sw.cliConfig->ip6MgmtAddrIntfNameIs(Rex::String("Vlan100"));
   sw.ip6(5, "fe80::1/64");
   EXPECT_EQ(told(), "mac");
   sw.ip6(5, "2001:db8::2/64");
   sw.ip6(5, "2001:db8::1/64");
   sw.ip6(2, "2001:db8::/64");
   EXPECT_EQ(told(), "2001:db8::1");
   sw.network.addresses.ip6Del(5, addr<Wirekit::Ip6AddrWithMask>("2001:db8::1/64"));
   sw.ip4(2, "10.0.0.2/24");
   EXPECT_EQ(told(), "2001:db8::2 10.0.0.2");
   // The interface is another one from here on: without its number the address would be a fault.
   sw.network.links.linkIs(vlan(5, 101));
   EXPECT_EQ(told(), "10.0.0.2");
   sw.cliConfig->ip6MgmtAddrIntfNameIs(Rex::String("Vlan101"));
   EXPECT_EQ(told(), "2001:db8::2 10.0.0.2");
   sw.network.links.linkDel(5);
   EXPECT_EQ(told(), "10.0.0.2");
}

TEST_F(AddressFeederTest, anInterfaceThatCannotBeRanked) {
   sw.network.links.linkIs(device(20, "Ethernet200"));
   EXPECT_TRUE(sw.localPort("Ethernet200")) << "a port all the same";
   sw.context.takeLogs();
   sw.ip4(20, "10.0.0.1/24");
   sw.ip6(20, "2001:db8::1/64");
   EXPECT_EQ(told(), "mac");
   sw.ip4(20, "10.0.0.2/24");
   EXPECT_EQ(told(), "mac");
   auto logs = sw.context.takeLogs();
   ASSERT_EQ(logs.size(), 1u);
   EXPECT_TRUE(
       logs.front().starts_with("HOST_INTERFACE_NOT_RANKED: The addresses of Ethernet200 "
                                "(device Ethernet200) are not told"))
       << logs.front();
   // No rank is asked for here.
   sw.cliConfig->ip6MgmtAddrIntfNameIs("Ethernet200");
   EXPECT_EQ(told(), "2001:db8::1");
   sw.network.links.linkDel(20);
}

TEST_F(AddressFeederTest, theKernelsOrderAndPeers) {
   auto own = addr<Wirekit::IpAddrWithMask>("10.0.0.1/32");
   Wirekit::IpAddr far(0x0A000002), other(0x0A000003);
   sw.network.addresses.ip4Is(2, {own, false, 0, far});
   sw.network.addresses.ip4Is(2, {own, false, 0, other});
   sw.network.addresses.ip4Del(2, {own, false, 0, other});
   EXPECT_EQ(told(), "10.0.0.1") << "with the first peer it stands";
   sw.network.addresses.ip4Del(2, {own, false, 0, far});
   sw.ip4(2, "10.0.0.1/24");
   sw.ip4(2, "10.0.0.2/24", true);
   sw.ip4(2, "10.1.0.1/16");
   sw.noIp4(2, "10.0.0.1/24");
   sw.ip4(2, "10.0.0.2/24");
   EXPECT_EQ(told(), "10.1.0.1 10.0.0.2") << "promoted, and so behind the other primary one";
}

// Looks at what a frame would tell whenever one could be built.
class FrameSm : public Rex::StateMachine {
 public:
   FrameSm(FedSwitch& sw, std::set<std::string> stay) : sw_(sw), stay_(std::move(stay)) {
      on(sw.localSystem, Lldp::LocalSystem::managementAddressAttr, &FrameSm::handleChange);
      on(sw.localSystem, Lldp::LocalSystem::managementAddressPrioAttr, &FrameSm::handleChange);
   }

 private:
   void handleChange() {
      std::string told = " " + sw_.told() + " ";
      for (const std::string& addr : stay_) {
         EXPECT_NE(told.find(" " + addr + " "), std::string::npos) << told;
      }
   }
   FedSwitch& sw_;
   const std::set<std::string> stay_;
};

TEST_F(AddressFeederTest, aNewDeviceNameTakesNoAddressAway) {
   sw.ip4(5, "10.0.0.9/24");
   EXPECT_EQ(told(), "10.0.0.9");
   FrameSm frames(sw, {"10.0.0.9"});
   Link renamed = vlan(5, 100);
   renamed.name = "office";
   sw.network.links.linkIs(renamed);
   EXPECT_EQ(told(), "10.0.0.9");
   EXPECT_EQ(sw.at<Interface::AllIntfStatusDir>("interface/status/all")
                 ->intfStatus(IntfId("Vlan100"))
                 ->deviceName(),
             "office");
   frames.close();
}

// The feeder of ports hears of it first, while that of groups still has the device.
TEST_F(AddressFeederTest, aGroupThatBecomesAPort) {
   auto intfs = sw.at<Interface::AllIntfStatusDir>("interface/status/all");
   auto stand = [&](const char* name) { return intfs->intfStatusHas(IntfId(name)); };
   sw.network.links.linkIs(device(30, "team", "bond"));
   EXPECT_TRUE(stand("Port-Channel1"));
   sw.network.links.linkIs(device(30, "Ethernet30"));
   EXPECT_TRUE(stand("Ethernet30") && !stand("Port-Channel1"));
   sw.network.links.linkIs(device(30, "team", "bond"));
   EXPECT_TRUE(!stand("Ethernet30") && stand("Port-Channel1"));
   sw.network.links.linkDel(30);
}

// Every way in which the addresses of an interface can change places, all of them told at once and
// the news one at a time.
TEST_F(AddressFeederTest, noFrameLacksAnAddressThatStays) {
   const std::vector<std::vector<const char*>> orders = {
       {"10.0.0.1/24", "10.0.0.2/24", "10.0.0.3/24"}, {"10.0.0.2/24", "10.0.0.3/24"},
       {"10.0.0.3/24", "10.0.0.2/24", "10.0.0.4/24"}, {"10.0.0.2/24", "10.0.0.1/24", "10.0.0.3/24"},
       {"10.0.0.1/24", "10.0.0.3/24", "10.0.0.2/24"},
   };
   auto set = [&](const std::vector<const char*>& addresses) {
      DeviceAddresses now;
      for (const char* text : addresses) {
         put(now, {addr<Wirekit::IpAddrWithMask>(text), !now.ip4.empty()});
      }
      sw.network.addresses.addressesAre({{2, now}});
      return told();
   };
   set(orders[0]);
   FrameSm frames(sw, {"10.0.0.2", "10.0.0.3"});
   for (const auto& order : orders) {
      std::string all = set(order);
      EXPECT_TRUE(all.starts_with(std::string(order[0], 8))) << all;
      EXPECT_EQ(all.size(), order.size() * 9 - 1) << all;
      set(orders[0]);
   }
   // The kernel promotes: the primary one goes, and only the next news say which takes its place.
   sw.noIp4(2, "10.0.0.1/24");
   EXPECT_EQ(told(), "10.0.0.2 10.0.0.3");
   sw.ip4(2, "10.0.0.2/24", false);
   EXPECT_EQ(told(), "10.0.0.2 10.0.0.3");
   sw.ip4(2, "10.0.0.1/24", true);
   EXPECT_EQ(told(), "10.0.0.2 10.0.0.1 10.0.0.3");
}

}  // namespace
}  // namespace Host
