// Which interfaces exist as devices, and what is read of interfaces by their kind.
#include <gtest/gtest.h>

#include "Interface/NetNsIntfStatusManager.h"
#include "Rex/Clock.h"
#include "Rex/Context.h"

namespace Interface {
namespace {

using Wirekit::IntfId;

class NetNsIntfStatusManagerTest : public testing::Test {
 protected:
   Rex::Ptr<IntfStatus> row(const char* name, const char* device, int ifIndex) {
      auto made = Rex::make<IntfStatus>(IntfId(name));
      made->deviceNameIs(device);
      made->ifIndexIs(ifIndex);
      return made;
   }
   DeviceIntfStatus device(const char* name) const { return devices->intfStatus(IntfId(name)); }

   Rex::Context context{Rex::make<Rex::Clock>(std::make_shared<Rex::ManualTime>())};
   Rex::ContextScope scope{context};
   Rex::Ptr<AllIntfStatusDir> all = Rex::make<AllIntfStatusDir>();
   Rex::Ptr<AllIntfStatusLocalDir> local = Rex::make<AllIntfStatusLocalDir>();
   Rex::Ptr<DeviceIntfStatusDir> devices = Rex::make<DeviceIntfStatusDir>();
};

TEST_F(NetNsIntfStatusManagerTest, theDevicesOfThisCellAreFollowed) {
   auto eth1 = row("Ethernet1", "e1", 5);
   local->intfStatusIs(eth1);
   all->intfStatusIs(row("Management2/1", "ma1", 9));  // the other cell's
   auto root = NetNsIntfStatusManagerRootIs(all, local, "root", false);
   auto manager = root->intfStatusManagerIs(devices, nullptr);
   EXPECT_EQ(device("Ethernet1"), (DeviceIntfStatus{IntfId("Ethernet1"), "e1", 5}));
   EXPECT_EQ(devices->intfStatuss(), 1u);

   local->intfStatusIs(row("Vlan10", "", 100));  // no device
   local->intfStatusIs(row("Ethernet2", "e2", 0));
   EXPECT_EQ(devices->intfStatuss(), 1u);
   local->intfStatus(IntfId("Ethernet2"))->ifIndexIs(6);
   EXPECT_EQ(device("Ethernet2").ifIndex, 6);
   eth1->ifIndexIs(7);
   EXPECT_EQ(device("Ethernet1").ifIndex, 7);
   eth1->deviceNameIs("");
   EXPECT_FALSE(devices->intfStatusHas(IntfId("Ethernet1")));

   // Another entity under the same key takes the old one's place.
   local->intfStatusIs(row("Ethernet2", "e2", 60));
   EXPECT_EQ(device("Ethernet2").ifIndex, 60);
   local->intfStatusDel(IntfId("Ethernet2"));
   EXPECT_EQ(devices->intfStatuss(), 0u);

   eth1->deviceNameIs("e1");
   EXPECT_EQ(devices->intfStatuss(), 1u);
   root->intfStatusManagerDel(Wirekit::NamespaceName::defaultNamespace());
   EXPECT_EQ(devices->intfStatuss(), 0u);
   eth1->ifIndexIs(8);
   EXPECT_EQ(devices->intfStatuss(), 0u);
}

}  // namespace
}  // namespace Interface
