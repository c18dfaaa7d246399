// Interface names and addresses.
#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

#include "Rex/Json.h"
#include "Wirekit/EthAddr.h"
#include "Wirekit/EthHdr.h"
#include "Wirekit/EthIntfId.h"
#include "Wirekit/LoopbackIntfId.h"
#include "Wirekit/MgmtIntfId.h"
#include "Wirekit/PortChannelIntfId.h"
#include "Wirekit/VlanIntfId.h"

namespace Wirekit {
namespace {

std::string kindsOf(const IntfId& intfId) {
   std::string kinds;
   if (EthIntfId::isEthIntfId(intfId)) kinds += "eth ";
   if (EthIntfId::isUnconnected(intfId)) kinds += "unconnected ";
   if (MgmtIntfId::isMgmtIntfId(intfId)) kinds += "mgmt ";
   if (PortChannelIntfId::isPortChannelIntfId(intfId)) kinds += "lag ";
   if (VlanIntfId::isVlanIntfId(intfId)) kinds += "vlan ";
   if (LoopbackIntfId::isLoopbackIntfId(intfId)) kinds += "loopback ";
   return kinds;
}

TEST(IntfId, kindFollowsFromTheName) {
   const std::pair<const char*, const char*> cases[] = {
       {"Ethernet5", "eth "},
       {"Ethernet3/1", "eth "},
       {"Ethernet3/1/2", "eth "},
       {"UnconnectedEthernet7/1", "eth unconnected "},
       {"UnconnectedEthernet", "unconnected "},
       {"Management1", "mgmt "},
       {"Management2/1", "mgmt "},
       {"Port-Channel5", "lag "},
       {"Vlan100", "vlan "},
       {"Loopback0", "loopback "},
       {"", ""},
       {"Ethernet", ""},
       {"Ethernet/1", ""},
       {"Ethernet1/", ""},
       {"Ethernet1/2/3/4", ""},
       {"Ethernet1.100", ""},
       {"Ethernet-1", ""},
       {"Ethernet+1", ""},
       {"Ethernet 1", ""},
       {"Ethernet99999999999", ""},
       {"ethernet1", ""},
       {"Management1/1/1", ""},
       {"Port-Channel5/1", ""},
       {"Vlan", ""},
       {"eth0", ""},
   };
   for (auto [name, kinds] : cases) EXPECT_EQ(kindsOf(IntfId(name)), kinds) << name;
}

TEST(IntfId, numbersOfAPort) {
   struct Case {
      const char* name;
      uint32_t module, port, lane;
   };
   for (Case c :
        {Case{"Ethernet5", 0, 5, 0}, Case{"Ethernet3/1", 3, 1, 0}, Case{"Ethernet3/1/2", 3, 1, 2},
         Case{"UnconnectedEthernet4/7", 4, 7, 0}, Case{"Vlan5", 0, 0, 0}}) {
      IntfId intfId(c.name);
      EXPECT_EQ(EthIntfId::module(intfId), c.module) << c.name;
      EXPECT_EQ(EthIntfId::port(intfId), c.port) << c.name;
      EXPECT_EQ(EthIntfId::lane(intfId), c.lane) << c.name;
   }
   EXPECT_EQ(MgmtIntfId::module(IntfId("Management2/1")), 2u);
   EXPECT_EQ(MgmtIntfId::port(IntfId("Management2/1")), 1u);
   EXPECT_EQ(MgmtIntfId::module(IntfId("Management1")), 0u);
   EXPECT_EQ(MgmtIntfId::port(IntfId("Management1")), 1u);
   EXPECT_EQ(PortChannelIntfId::channel(IntfId("Port-Channel12")), 12u);
   EXPECT_EQ(VlanIntfId::vlan(IntfId("Vlan4094")), 4094u);
}

TEST(IntfId, sortsByNumberAndConsistentlyWithEquality) {
   // In their order; neighbours in it differ in one thing each.
   std::vector<IntfId> sorted;
   for (const char* name :
        {"", "Ethernet", "Ethernet02", "Ethernet2", "Ethernet2/1", "Ethernet2/2", "Ethernet2/10",
         "Ethernet2/10/1", "Ethernet10", "Ethernet10/1", "Ethernet184467440737095516150",
         "Ethernet184467440737095516151", "Management1", "Port-Channel1", "eth0"}) {
      sorted.emplace_back(name);
   }
   for (size_t i = 0; i < sorted.size(); ++i) {
      for (size_t j = 0; j < sorted.size(); ++j) {
         EXPECT_EQ(sorted[i] < sorted[j], i < j) << sorted[i] << " " << sorted[j];
         EXPECT_EQ(sorted[i] == sorted[j], i == j) << sorted[i] << " " << sorted[j];
      }
   }
}

TEST(IntfId, textFormIsTakenOnlyWhereItCanNameAnInterface) {
   IntfId intfId("before");
   for (const std::string& bad :
        {std::string(), std::string("a b"), std::string("a\n"), std::string("a\0b", 3),
         std::string("\xC3\xA9"), std::string(65, 'x')}) {
      EXPECT_FALSE(IntfId::fromText(bad, intfId));
   }
   EXPECT_EQ(intfId, IntfId("before"));
   Rex::fromJson(Rex::toJson(IntfId("Ethernet3/1")), intfId, "");
   EXPECT_EQ(intfId, IntfId("Ethernet3/1"));
   EXPECT_EQ(Rex::hashOf(intfId), Rex::hashOf(IntfId("Ethernet3/1")));
   EXPECT_THROW(Rex::fromJson(Rex::Json("a b"), intfId, "x"), Rex::JsonError);
}

TEST(EthAddr, textFormsOfOneAddress) {
   const EthAddr addr(0x02, 0x00, 0xAB, 0xCD, 0xEF, 0x01);
   EXPECT_EQ(addr.stringValue(), "02:00:ab:cd:ef:01");
   for (const char* text : {"02:00:ab:cd:ef:01", "02-00-AB-CD-EF-01", "0200.abcd.EF01"}) {
      EthAddr read;
      EXPECT_TRUE(EthAddr::fromText(text, read)) << text;
      EXPECT_EQ(read, addr) << text;
   }
   for (const char* text :
        {"", "02:00:ab:cd:ef", "02:00:ab:cd:ef:0", "02:00:ab:cd:ef:01:", "02:00:ab:cd:ef:0g",
         "02:00-ab:cd:ef:01", "0200abcdef01", "0200.abcd.ef011", "02:00:ab:cd:ef:01 "}) {
      EthAddr read = addr;
      EXPECT_FALSE(EthAddr::fromText(text, read)) << text;
      EXPECT_EQ(read, addr) << text;
   }
   EXPECT_NE(Rex::hashOf(addr), Rex::hashOf(EthAddr()));
}

TEST(EthHdr, standsAsOnTheWire) {
   EthHdr header;
   header.dstAddrIs({0x01, 0x80, 0xC2, 0, 0, 0x0E});
   header.srcAddrIs({2, 3, 4, 5, 6, 7});
   header.etherTypeIs(0x88CC);
   const uint8_t wire[] = {0x01, 0x80, 0xC2, 0, 0, 0x0E, 2, 3, 4, 5, 6, 7, 0x88, 0xCC};
   EXPECT_EQ(std::memcmp(&header, wire, sizeof wire), 0);
   EXPECT_EQ(header.etherType(), 0x88CC);
   EXPECT_EQ(header.srcAddr(), EthAddr(2, 3, 4, 5, 6, 7));
}

}  // namespace
}  // namespace Wirekit
