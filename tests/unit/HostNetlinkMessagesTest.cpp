// What is taken from the kernel's messages: made by hand, since not every kernel has bonds, VLANs
// and VRFs.
#include <gtest/gtest.h>
#include <linux/if.h>
#include <linux/if_arp.h>
#include <linux/if_bridge.h>
#include <linux/if_link.h>
#include <linux/rtnetlink.h>

#include <cstring>

#include "host/Feeders/NetlinkMessages.h"

namespace Host {
namespace {

template <class T>
std::string octetsOf(const T& value) {
   return {reinterpret_cast<const char*>(&value), sizeof(value)};
}
std::string attribute(int type, const std::string& value) {
   rtattr header{static_cast<unsigned short>(sizeof(rtattr) + value.size()),
                 static_cast<unsigned short>(type)};
   std::string all = octetsOf(header) + value;
   all.resize(RTA_ALIGN(all.size()));
   return all;
}

// Kept at an address that fits a header.
struct Message {
   template <class Header>
   Message(int type, const Header& header, const std::string& attributes) {
      std::string body = octetsOf(header);
      body.resize(NLMSG_ALIGN(body.size()));
      body += attributes;
      nlmsghdr head{};
      head.nlmsg_len = static_cast<uint32_t>(NLMSG_HDRLEN + body.size());
      head.nlmsg_type = static_cast<uint16_t>(type);
      std::string all = octetsOf(head) + body;
      words.resize(all.size() / 4 + 1);
      std::memcpy(words.data(), all.data(), all.size());
   }
   nlmsghdr& header() { return *reinterpret_cast<nlmsghdr*>(words.data()); }
   std::vector<uint32_t> words;
};

Message link(const std::string& kind, const std::string& data, int family = AF_UNSPEC) {
   ifinfomsg header{};
   header.ifi_family = static_cast<unsigned char>(family);
   header.ifi_type = ARPHRD_ETHER;
   header.ifi_index = 7;
   header.ifi_flags = IFF_UP | IFF_LOWER_UP;
   std::string info = attribute(IFLA_INFO_KIND, kind) + attribute(IFLA_INFO_DATA, data);
   return {RTM_NEWLINK, header,
           attribute(IFLA_IFNAME, std::string("eth7\0", 5)) + attribute(IFLA_MTU, octetsOf(9000u)) +
               attribute(IFLA_MASTER, octetsOf(3)) + attribute(IFLA_ADDRESS, "\x02\1\1\1\1\7") +
               attribute(IFLA_OPERSTATE, "\6") + attribute(IFLA_IFALIAS, "spine") +
               attribute(IFLA_LINKINFO, info)};
}

TEST(NetlinkMessages, links) {
   auto plain = link("bond", attribute(1, "x"));
   auto found = linkIn(plain.header());
   ASSERT_TRUE(found);
   Link expected;
   expected.ifIndex = 7;
   expected.name = "eth7";
   expected.kind = "bond";
   expected.alias = "spine";
   expected.ethAddr = Wirekit::EthAddr(2, 1, 1, 1, 1, 7);
   expected.mtu = 9000;
   expected.master = 3;
   expected.ethernet = expected.adminUp = expected.carrier = true;
   expected.operState = IF_OPER_UP;
   EXPECT_EQ(*found, expected);
   auto vlan = link("vlan", attribute(IFLA_VLAN_ID, octetsOf(uint16_t(100))));
   EXPECT_EQ(linkIn(vlan.header())->vlanId, 100);
   auto wrong = link("vlan", attribute(IFLA_VLAN_ID, octetsOf(uint16_t(5000))));
   EXPECT_EQ(linkIn(wrong.header())->vlanId, 0);
   auto bridge = link("bridge", attribute(IFLA_BR_VLAN_FILTERING, "\1"));
   EXPECT_TRUE(linkIn(bridge.header())->vlanAware);
   auto port = link("veth", "", AF_BRIDGE);
   EXPECT_FALSE(linkIn(port.header())) << "news of a bridge's port are none of the device";
   EXPECT_EQ(vlanNewsIn(port.header()), 7);
   EXPECT_EQ(vlanNewsIn(plain.header()), 0);
}

TEST(NetlinkMessages, addresses) {
   struct {
      int type, family;
      std::string attributes;
      uint8_t flags, scope;
      const char* expected;  // "-" gone, "s" secondary
   } cases[] = {
       {RTM_NEWADDR, AF_INET, attribute(IFA_LOCAL, "\xa\1\1\1"), 0, 0, "10.1.1.1/24"},
       {RTM_DELADDR, AF_INET, attribute(IFA_LOCAL, "\xa\1\1\1"), 0, 0, "10.1.1.1/24-"},
       {RTM_NEWADDR, AF_INET, attribute(IFA_LOCAL, "\xa\1\1\1"), IFA_F_SECONDARY, 0,
        "10.1.1.1/24s"},
       {RTM_NEWADDR, AF_INET,
        attribute(IFA_ADDRESS, "\xa\1\1\2") + attribute(IFA_LOCAL, "\xa\1\1\1"), 0, 0,
        "10.1.1.1/24"},
       {RTM_NEWADDR, AF_INET, attribute(IFA_LOCAL, "\xa\1\1"), 0, 0, ""},
       {RTM_NEWADDR, AF_INET, attribute(IFA_LOCAL, "0123456789abcdef"), 0, 0, ""},
       {RTM_NEWADDR, AF_INET6, attribute(IFA_ADDRESS, "0123456789abcdef"), 0, 0,
        "3031:3233:3435:3637:3839:6162:6364:6566/24"},
       {RTM_NEWADDR, AF_INET6, attribute(IFA_ADDRESS, "0123456789abcdef"), IFA_F_DADFAILED, 0,
        "3031:3233:3435:3637:3839:6162:6364:6566/24-"},
       {RTM_NEWADDR, AF_INET6, attribute(IFA_ADDRESS, "0123456789abcdef"), 0, RT_SCOPE_HOST,
        "3031:3233:3435:3637:3839:6162:6364:6566/24-"},
       {RTM_NEWADDR, AF_PHONET, attribute(IFA_LOCAL, "\1"), 0, 0, ""},
       {RTM_NEWADDR, AF_INET, "", 0, 0, ""},
   };
   for (const auto& [type, family, attributes, flags, scope, expected] : cases) {
      ifaddrmsg header{};
      header.ifa_family = static_cast<uint8_t>(family);
      header.ifa_prefixlen = 24;
      header.ifa_flags = flags;
      header.ifa_scope = scope;
      header.ifa_index = 9;
      Message message(type, header, attributes);
      auto news = addressIn(message.header());
      std::string text;
      if (news) {
         auto* ip4 = std::get_if<Ip4Address>(&news->address);
         text = (ip4 ? ip4->addr.stringValue()
                     : std::get<Wirekit::Ip6AddrWithMask>(news->address).stringValue())
                    .stdString();
         if (ip4 && ip4->secondary) text += "s";
         if (news->gone) text += "-";
         EXPECT_EQ(news->ifIndex, 9);
      }
      EXPECT_EQ(text, expected);
   }
}

TEST(NetlinkMessages, vlans) {
   br_vlan_msg header{};
   header.family = AF_BRIDGE;
   header.ifindex = 9;
   auto entry = [](uint16_t vid, uint16_t flags, bool range = false) {
      bridge_vlan_info info{flags, vid};
      std::string more = range ? attribute(BRIDGE_VLANDB_ENTRY_RANGE, octetsOf(vid)) : "";
      return attribute(BRIDGE_VLANDB_ENTRY,
                       attribute(BRIDGE_VLANDB_ENTRY_INFO, octetsOf(info)) + more);
   };
   const uint16_t pvid = BRIDGE_VLAN_INFO_PVID;
   struct {
      std::string entries;
      PortVlan expected;
   } cases[] = {
       {"", {}},
       {entry(1, pvid), {1, false}},
       {entry(1, 0) + entry(20, pvid), {20, true}},
       {entry(2, 0, true), {0, true}},
       {entry(1, pvid, true), {1, true}},
       {entry(4095, pvid), {0, true}},
       {attribute(BRIDGE_VLANDB_ENTRY, "xy"), {}},
   };
   for (const auto& [entries, expected] : cases) {
      Message message(RTM_NEWVLAN, header, entries);
      std::map<int32_t, PortVlan> vlans;
      takeVlans(message.header(), vlans);
      EXPECT_EQ(vlans[9], expected);
      EXPECT_EQ(vlanNewsIn(message.header()), 9);
   }
}

// Each length of each message, so that a memory checker sees what is read beyond the end.
TEST(NetlinkMessages, cutShort) {
   ifaddrmsg address{};
   address.ifa_family = AF_INET;
   br_vlan_msg vlan{};
   Message messages[] = {
       link("vlan", attribute(IFLA_VLAN_ID, "\1\1")),
       {RTM_NEWADDR, address, attribute(IFA_LOCAL, "\xa\1\1\1")},
       {RTM_NEWVLAN, vlan, attribute(BRIDGE_VLANDB_ENTRY, attribute(1, "\1\1\1\1"))},
   };
   for (Message& whole : messages) {
      for (uint32_t length = NLMSG_HDRLEN; length <= whole.header().nlmsg_len; ++length) {
         Message cut = whole;
         cut.words.resize((length + 3) / 4);
         cut.words.shrink_to_fit();
         cut.header().nlmsg_len = length;
         std::map<int32_t, PortVlan> vlans;
         takeVlans(cut.header(), vlans);
         bool headerFits = length >= NLMSG_HDRLEN + sizeof(ifaddrmsg);
         EXPECT_TRUE(headerFits || (!addressIn(cut.header()) && !linkIn(cut.header())));
      }
   }
}

}  // namespace
}  // namespace Host
