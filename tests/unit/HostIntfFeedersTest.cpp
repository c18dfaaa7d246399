// What becomes of devices that are no ports, and what bridges and bonds make of ports.
#include <gtest/gtest.h>

#include "unit/HostFedSwitch.h"

namespace Host {
namespace {

Link with(Link link, int32_t master) {
   link.master = master;
   return link;
}
Link vlan(int32_t ifIndex, const char* name, uint16_t id) {
   Link link = device(ifIndex, name, "vlan");
   link.vlanId = id;
   return link;
}
Link loopback() {
   Link link = device(1, "lo", "");
   link.ethernet = false;
   link.loopback = true;
   return link;
}
Link aware(int32_t ifIndex, const char* name) {
   Link link = device(ifIndex, name, "bridge");
   link.vlanAware = true;
   return link;
}

TEST(VirtualIntfFeeder, names) {
   FedSwitch sw({loopback(), device(2, "a"), device(3, "dummy0", "dummy"),
                 device(4, "dummy12", "dummy"), device(5, "bond007", "bond"),
                 device(6, "team7", "team"), device(7, "uplink", "bond"), vlan(8, "a.0", 0),
                 vlan(9, "guests", 30), vlan(10, "a.30", 30), device(11, "br0", "bridge"),
                 aware(12, "br1"), device(13, "tun0", "tun"), device(14, "x99999999", "dummy")});
   const std::string always =
       "Ethernet1=a Loopback0=lo Loopback1=dummy0 Loopback2=x99999999 Loopback12=dummy12 "
       "Port-Channel1=team7 Port-Channel2=uplink Port-Channel7=bond007 Vlan1=br0 ";
   EXPECT_EQ(sw.intfNames() + " ", always + "Vlan30=guests ");
   auto logs = sw.context.takeLogs();
   EXPECT_TRUE(std::ranges::any_of(logs, [](const std::string& line) {
      return line ==
             "HOST_INTERFACE_NAME_TAKEN: Device a.30 is no interface of the switch: Vlan30 "
             "is device guests already";
   })) << testing::PrintToString(logs);

   // A bridge that tells VLANs apart is the VLAN interface of its own.
   sw.network.vlans.vlanIs(12, {20, false});
   EXPECT_EQ(sw.intfNames() + " ", always + "Vlan20=br1 Vlan30=guests ");
   sw.network.vlans.vlanIs(12, {1, true});
   EXPECT_EQ(sw.intfNames() + " ", always + "Vlan30=guests ");
   // Who waits for a name gets it; what is renamed keeps it if the name says no other.
   sw.network.links.linkDel(9);
   sw.network.links.linkDel(11);
   sw.network.links.linkIs(device(7, "core", "bond"));
   EXPECT_EQ(sw.intfNames(),
             "Ethernet1=a Loopback0=lo Loopback1=dummy0 Loopback2=x99999999 Loopback12=dummy12 "
             "Port-Channel1=team7 Port-Channel2=core Port-Channel7=bond007 Vlan1=br1 Vlan30=a.30");
}

class LayerTwoTest : public testing::Test {
 protected:
   uint16_t portVlan(const char* port) { return sw.localPort(port)->portVlanId().value(); }
   // "-" outside any group, else its number.
   std::string group(const char* port) {
      auto info = sw.localPort(port)->linkAggregationInfo();
      EXPECT_TRUE(info.status.aggCapable());
      return info.status.aggEnabled() ? std::to_string(info.portId) : "-";
   }
   void vlanIs(int32_t ifIndex, uint16_t pvid, bool others = false) {
      sw.network.vlans.vlanIs(ifIndex, {pvid, others});
   }
   void linkIs(const Link& link) { sw.network.links.linkIs(link); }
   Bridging::SwitchIntfConfig::Ptr row(const char* port) {
      return sw.bridging->switchIntfConfig(Wirekit::IntfId(port));
   }

   FedSwitch sw{{device(2, "a"), device(3, "b"), device(4, "Management1"), aware(5, "br0"),
                 device(6, "bond4", "bond"), device(7, "bond9", "bond")}};
};

TEST_F(LayerTwoTest, theVlanOfABridgesPort) {
   EXPECT_EQ(portVlan("Ethernet1"), 0);
   vlanIs(2, 1);
   EXPECT_FALSE(row("Ethernet1")) << "no member yet";
   linkIs(with(device(2, "a"), 5));
   EXPECT_EQ(portVlan("Ethernet1"), 1);
   EXPECT_EQ(row("Ethernet1")->switchportMode(), Bridging::switchportAccess);
   vlanIs(2, 20, true);
   EXPECT_EQ(portVlan("Ethernet1"), 20);
   EXPECT_EQ(row("Ethernet1")->switchportMode(), Bridging::switchportTrunk);
   vlanIs(2, 0, true);
   EXPECT_EQ(portVlan("Ethernet1"), 0) << "untagged frames have no VLAN";
   vlanIs(2, 30);
   linkIs(device(5, "br0", "bridge"));
   EXPECT_EQ(portVlan("Ethernet1"), 0) << "the bridge tells no VLANs apart";
   linkIs(aware(5, "br0"));
   EXPECT_EQ(portVlan("Ethernet1"), 30);
   linkIs(device(2, "a"));
   EXPECT_EQ(portVlan("Ethernet1"), 0);
   EXPECT_FALSE(row("Ethernet1"));
   // A device that goes and comes back as a member.
   linkIs(with(device(2, "a"), 5));
   sw.network.links.linkDel(2);
   EXPECT_FALSE(row("Ethernet1"));
   vlanIs(12, 40);
   linkIs(with(device(12, "a"), 5));
   EXPECT_EQ(portVlan("Ethernet1"), 40);
}

TEST_F(LayerTwoTest, theGroupOfABondsPort) {
   EXPECT_EQ(group("Ethernet1"), "-");
   vlanIs(6, 50);
   linkIs(with(device(6, "bond4", "bond"), 5));
   for (int32_t port : {2, 3, 4}) {
      linkIs(with(device(port, port == 4 ? "Management1" : port == 3 ? "b" : "a"), 6));
   }
   EXPECT_EQ(group("Ethernet1"), "6");
   EXPECT_EQ(group("Ethernet2"), "6");
   EXPECT_EQ(portVlan("Ethernet1"), 50) << "that of its group";
   auto groups = sw.at<Interface::EthLagIntfStatusDir>("interface/status/eth/lag");
   EXPECT_EQ(groups->intfStatus(Wirekit::IntfId("Port-Channel4"))->members(), 2u)
       << "a management port is no member";
   linkIs(with(device(2, "a"), 7));
   EXPECT_EQ(group("Ethernet1"), "7");
   EXPECT_EQ(portVlan("Ethernet1"), 0);
   linkIs(device(2, "a"));
   EXPECT_EQ(group("Ethernet1"), "-");

   // A member goes; the group goes, and comes back under its name with another index.
   linkIs(with(device(2, "a"), 6));
   sw.network.links.linkDel(2);
   EXPECT_EQ(groups->intfStatus(Wirekit::IntfId("Port-Channel4"))->members(), 1u);
   sw.network.links.linkDel(6);
   EXPECT_EQ(group("Ethernet2"), "-");
   EXPECT_EQ(portVlan("Ethernet2"), 0);
   linkIs(device(16, "bond4", "bond"));
   linkIs(with(device(3, "b"), 16));
   EXPECT_EQ(group("Ethernet2"), "16");
}

// After lost news everything comes at once, members before what they are members of.
TEST_F(LayerTwoTest, aFullRead) {
   vlanIs(22, 60);
   sw.network.links.linksAre(
       devices({with(device(2, "a"), 22), with(device(3, "b"), 21), loopback(), aware(21, "br1"),
                with(device(22, "bond5", "bond"), 21)}));
   vlanIs(3, 70);
   EXPECT_EQ(group("Ethernet1"), "22");
   EXPECT_EQ(portVlan("Ethernet1"), 60);
   EXPECT_EQ(portVlan("Ethernet2"), 70);
   EXPECT_EQ(sw.intfNames(), "Ethernet1=a Ethernet2=b Loopback0=lo Port-Channel5=bond5");
}

}  // namespace
}  // namespace Host
