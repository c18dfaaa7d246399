// Interfaces of two supervisors of a chassis, and what a restarted process takes up of its own.
#include <gtest/gtest.h>

#include "host/Feeders/IntfTables.h"
#include "support/TestContext.h"

namespace Host {
namespace {

using Interface::EthPhyIntfStatus;
using Wirekit::IntfId;

class IntfTableTest : public testing::Test {
 protected:
   struct Cell {
      Cell(int number, const std::shared_ptr<Statestore::Tree>& tree,
           IntfTables::Of whose = IntfTables::Of::both) {
         context.context().cellId = number;
         context.context().serviceIs<Statestore::Tree>(tree);
         manager = Rex::make<Statestore::EntityManager>();
         tables.emplace(*manager, whose);
         dir = Rex::dynamicPtr<Interface::AllEthPhyIntfStatusDir>(
             manager->getEntity("interface/status/eth/phy/all"));
      }
      void portIs(const char* port, uint16_t mtu) {
         tables->phy().rowIs(IntfId(port), [&](EthPhyIntfStatus& row) { row.maxMtuIs(mtu); });
      }
      // The MTU that the agent sees, 0 where it sees no port.
      int seen(const char* port) const {
         auto row = dir->intfStatus(IntfId(port));
         return row ? row->maxMtu() : 0;
      }
      LldpTest::TestContext context;
      Rex::Ptr<Statestore::EntityManager> manager;
      std::optional<IntfTables> tables;
      Interface::AllEthPhyIntfStatusDir::Ptr dir;
   };

   std::shared_ptr<Statestore::Tree> tree = std::make_shared<Statestore::Tree>();
   Cell one{1, tree}, two{2, tree};
};

TEST_F(IntfTableTest, eachSeesBothAndItsOwnFirst) {
   one.portIs("Management1/1", 1501);
   EXPECT_EQ(two.seen("Management1/1"), 1501);
   one.portIs("Ethernet1", 1511);
   two.portIs("Ethernet1", 1512);
   EXPECT_EQ(one.seen("Ethernet1"), 1511);
   EXPECT_EQ(two.seen("Ethernet1"), 1512);
   one.portIs("Ethernet1", 1521);
   EXPECT_EQ(one.seen("Ethernet1"), 1521);
   one.tables->phy().rowDel(IntfId("Ethernet1"));
   EXPECT_EQ(one.seen("Ethernet1"), 1512) << "the other one's is left";
   two.tables->phy().rowDel(IntfId("Ethernet1"));
   EXPECT_EQ(one.seen("Ethernet1"), 0);
   two.portIs("Ethernet2", 1522);
   Cell watcher{1, tree, IntfTables::Of::others};
   EXPECT_EQ(watcher.seen("Management1/1"), 1501);
   EXPECT_EQ(watcher.seen("Ethernet2"), 1522);
   one.portIs("Ethernet2", 1521);
   EXPECT_EQ(watcher.seen("Ethernet2"), 1521);
   one.tables->phy().rowDel(IntfId("Ethernet2"));
   EXPECT_EQ(watcher.seen("Ethernet2"), 1522);
   two.tables->phy().rowDel(IntfId("Ethernet2"));
   EXPECT_EQ(watcher.seen("Ethernet2"), 0);
   // What somebody else writes there is no interface.
   auto dir = Rex::dynamicPtr<Rex::Dir>(one.manager->getEntity("cell/2/host/ethPhyIntfStatus"));
   dir->entityPtrIs("Ethernet7", Rex::make<Rex::Dir>());
   dir->entityPtrIs("Ethernet8", Rex::make<EthPhyIntfStatus>(IntfId("Ethernet9")));
   dir->entityPtrIs("Ethernet999/1", Rex::make<EthPhyIntfStatus>(IntfId("Ethernet999/1")));
   EXPECT_EQ(one.dir->intfStatuss(), 1u);
}

TEST_F(IntfTableTest, aRestartTakesUpWhatStandsAndRemovesTheRest) {
   one.portIs("Ethernet1", 1501);
   one.portIs("Ethernet2", 1502);
   auto before = two.dir->intfStatus(IntfId("Ethernet1"));
   Cell again(1, tree);
   EXPECT_EQ(again.seen("Ethernet1"), 0) << "nobody has found the device yet";
   again.portIs("Ethernet1", 9000);
   again.tables->sweep();
   EXPECT_EQ(two.dir->intfStatus(IntfId("Ethernet1")), before);
   EXPECT_EQ(two.seen("Ethernet1"), 9000);
   EXPECT_EQ(two.seen("Ethernet2"), 0);
}

}  // namespace
}  // namespace Host
