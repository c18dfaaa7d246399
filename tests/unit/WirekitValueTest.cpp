// Interface names and addresses.
#include <gtest/gtest.h>

#include <vector>

#include "Rex/Json.h"
#include "Wirekit/EthAddr.h"
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
   const std::pair<const char*, std::vector<const char*>> cases[] = {
       {"eth ", {"Ethernet5", "Ethernet3/1", "Ethernet3/1/2"}},
       {"eth unconnected ", {"UnconnectedEthernet7/1"}},
       {"unconnected ", {"UnconnectedEthernet"}},
       {"mgmt ", {"Management1", "Management2/1"}},
       {"lag ", {"Port-Channel5"}},
       {"vlan ", {"Vlan100"}},
       {"loopback ", {"Loopback0"}},
       {"",
        {"", "Ethernet", "Ethernet/1", "Ethernet1/", "Ethernet1/2/3/4", "Ethernet1.100",
         "Ethernet-1", "Ethernet+1", "Ethernet 1", "Ethernet99999999999", "ethernet1",
         "Management1/1/1", "Port-Channel5/1", "Vlan", "eth0"}},
   };
   for (const auto& [kinds, names] : cases) {
      for (const char* name : names) EXPECT_EQ(kindsOf(IntfId(name)), kinds) << name;
   }
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

}  // namespace
}  // namespace Wirekit
