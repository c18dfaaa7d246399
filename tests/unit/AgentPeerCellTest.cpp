// What the active agent does for the other supervisor: keeps its status, and merges both.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "Lldp/LldpAgent/StandbyCellDirSm.h"
#include "Lldp/LldpAgent/StatusAccumulatorSm.h"
#include "Rex/Dispatcher.h"
#include "support/TestContext.h"

using Lldp::Agent::StandbyCellDirSm;
using Lldp::Agent::StatusAccumulatorSm;
using testing::ElementsAre;

namespace {

const Wirekit::IntfId front("Ethernet3/1");
const Wirekit::IntfId mgmt("Management2/1");
constexpr double never = 0;

struct PeerCell : testing::Test {
   ~PeerCell() override {
      if (accumulator) accumulator->close();
      if (cellDirSm) cellDirSm->close();
   }
   void accumulate() {
      accumulator = Rex::make<StatusAccumulatorSm>(local, nullptr, statusDir, all);
   }
   void keepPeer() { cellDirSm = Rex::make<StandbyCellDirSm>(cellDir, statusDir); }
   Lldp::Status::Ptr peer(const char* cell = "2") {
      return Rex::dynamicPtr<Lldp::Status>(statusDir->createEntity(cell, "Lldp::Status"));
   }
   std::vector<uint32_t> counters() const {
      return {all->remTablesInserts(), all->remTablesDeletes(), all->remTablesDrops(),
              all->remTablesAgeouts()};
   }

   LldpTest::TestContext context;  // of cell 1
   Rex::Dir::Ptr cellDir = Rex::make<Rex::Dir>();
   Rex::Dir::Ptr statusDir = Rex::make<Rex::Dir>();
   Lldp::Status::Ptr local = Rex::make<Lldp::Status>();
   Lldp::AllStatus::Ptr all = Rex::make<Lldp::AllStatus>();
   Rex::Ptr<StatusAccumulatorSm> accumulator;
   Rex::Ptr<StandbyCellDirSm> cellDirSm;
};
using StatusAccumulator = PeerCell;
using StandbyCellDir = PeerCell;

void count(Lldp::Status& status, uint32_t number) {
   status.remTablesInsertsIs(number);
   status.remTablesDeletesIs(number * 2);
   status.remTablesDropsIs(number * 3);
   status.remTablesAgeoutsIs(number * 4);
}

}  // namespace

TEST_F(StatusAccumulator, CountersAreThoseOfThisCellOrTheSums) {
   count(*local, 1);
   accumulate();
   EXPECT_THAT(counters(), ElementsAre(1, 2, 3, 4));
   count(*local, 0);
   EXPECT_THAT(counters(), ElementsAre(0, 0, 0, 0)) << "also backwards";
   count(*local, 5);

   Rex::Dispatcher::run([&] { count(*peer(), 10); });
   EXPECT_THAT(counters(), ElementsAre(15, 30, 45, 60));
   count(*peer(), 20);
   count(*local, 0xFFFFFFFF);
   EXPECT_THAT(counters(), ElementsAre(19, 38, 57, 76)) << "they wrap at 32 bits";

   auto gone = peer();
   statusDir->deleteEntity("2");
   EXPECT_THAT(counters(), ElementsAre(0xFFFFFFFF, 0xFFFFFFFE, 0xFFFFFFFD, 0xFFFFFFFC));
   count(*gone, 30);
   EXPECT_EQ(all->remTablesInserts(), 0xFFFFFFFF) << "it is not watched any more";
}

TEST_F(StatusAccumulator, TimesAndVrf) {
   struct {
      double local, remote, merged;
   } cases[] = {{never, never, never}, {7, never, 7}, {7, 8, 8}, {8, 7, 8}, {9, 9, 9}};
   accumulate();
   local->mgmtAddrVrfIs(L3::VrfName("red"));
   peer()->mgmtAddrVrfIs(L3::VrfName("blue"));
   for (const auto& c : cases) {
      local->remTablesLastChangeTimeIs(c.local);
      peer()->remTablesLastChangeTimeIs(c.remote);
      EXPECT_EQ(all->remTablesLastChangeTime(), c.merged);
   }
   EXPECT_EQ(all->mgmtAddrVrf(), L3::VrfName("red"));
   peer()->remTablesLastChangeTimeIs(20);
   statusDir->deleteEntity("2");
   EXPECT_EQ(all->remTablesLastChangeTime(), 9);
}

TEST_F(StatusAccumulator, PortsOfBothAndThisCellsFirst) {
   accumulate();
   auto theirs = peer()->portStatusIs(mgmt, 1.0);
   EXPECT_EQ(all->portStatus(mgmt), theirs) << "the very row";
   auto ours = local->portStatusIs(mgmt, 2.0);
   EXPECT_EQ(all->portStatus(mgmt), ours);
   peer()->portStatusDel(mgmt);
   theirs = peer()->portStatusIs(mgmt, 3.0);
   EXPECT_EQ(all->portStatus(mgmt), ours);
   local->portStatusDel(mgmt);
   EXPECT_EQ(all->portStatus(mgmt), theirs);
   Rex::Dispatcher::run([&] {
      peer()->portStatusDel(mgmt);
      theirs = peer()->portStatusIs(mgmt, 4.0);
   });
   EXPECT_EQ(all->portStatus(mgmt), theirs) << "a row made anew within one reaction";
   peer()->portStatusDel(mgmt);
   EXPECT_EQ(all->portStatuss(), 0u);
}

TEST_F(StatusAccumulator, PeerThatGoesTakesItsPortsAlsoThoseThatThisCellHas) {
   auto ours = local->portStatusIs(front, 1.0);
   peer()->portStatusIs(front, 1.0);
   peer()->portStatusIs(mgmt, 1.0);
   accumulate();
   EXPECT_EQ(all->portStatuss(), 2u);
   statusDir->deleteEntity("2");
   EXPECT_EQ(all->portStatuss(), 0u);
   count(*local, 3);
   EXPECT_EQ(all->portStatuss(), 0u) << "until the port itself changes";
   local->portStatusDel(front);
   ours = local->portStatusIs(front, 2.0);
   EXPECT_EQ(all->portStatus(front), ours);
}

TEST_F(StatusAccumulator, EntryOfAnotherTypeIsNoPeerButItsPortsStay) {
   count(*local, 1);
   auto theirs = peer()->portStatusIs(mgmt, 1.0);
   count(*peer(), 1);
   accumulate();
   EXPECT_THAT(counters(), ElementsAre(2, 4, 6, 8));
   statusDir->entityPtrIs("2", Rex::make<Rex::Dir>());
   EXPECT_THAT(counters(), ElementsAre(1, 2, 3, 4));
   EXPECT_EQ(all->portStatus(mgmt), theirs);
   EXPECT_FALSE(accumulator->lldpStatusRemote());
}

TEST_F(StatusAccumulator, StartReconcilesWhatIsInTheTable) {
   auto ours = local->portStatusIs(front, 1.0);
   auto theirs = peer()->portStatusIs(mgmt, 1.0);
   for (const char* name : {"Ethernet9", "Ethernet3/1", "Management2/1", "Ethernet8"}) {
      all->portStatusIs(Rex::make<Lldp::PortStatus>(Wirekit::IntfId(name), 0.5));
   }
   count(*local, 1);
   all->remTablesInsertsIs(99);
   accumulate();
   EXPECT_EQ(all->portStatuss(), 2u);
   EXPECT_EQ(all->portStatus(front), ours);
   EXPECT_EQ(all->portStatus(mgmt), theirs);
   EXPECT_THAT(counters(), ElementsAre(1, 2, 3, 4));
}

TEST_F(StatusAccumulator, OrderInWhichAPeerIsTakenUp) {
   accumulate();
   context.traceOn("LldpAgent");
   peer("1");
   EXPECT_THAT(context.takeTraces(), ElementsAre("StatusAccumulatorSm::handlePeerLldpStatus( 1 )"));
   auto theirs = Rex::make<Lldp::Status>();
   theirs->portStatusIs(mgmt, 1.0);
   statusDir->entityPtrIs("2", theirs);
   const std::string sm = "StatusAccumulatorSm::";
   const std::string last = sm + "handleRemTablesLastChangeTime()";
   const std::string inserts = sm + "handleRemTablesInserts()";
   const std::string deletes = sm + "handleRemTablesDeletes()";
   const std::string drops = sm + "handleRemTablesDrops()";
   const std::string ageouts = sm + "handleRemTablesAgeouts()";
   EXPECT_THAT(context.takeTraces(),
               ElementsAre(sm + "handlePeerLldpStatus( 2 )", last, inserts, deletes, drops, ageouts,
                           sm + "handleIntfId( Management2/1 )", inserts, deletes, drops, ageouts,
                           last, sm + "handleMgmtAddrVrf()"));
}

TEST_F(StandbyCellDir, PeersStatusStandsWhileItIsInTheChassis) {
   const std::string handler = "StandbyCellDirSm::handleStandbyCellDir( 2 )";
   context.traceOn("LldpAgent");
   keepPeer();
   EXPECT_EQ(statusDir->entityPtrs(), 0u);
   context.takeTraces();
   cellDir->createEntity("2", "Rex::Dir");
   EXPECT_THAT(context.takeTraces(),
               ElementsAre(handler, " Adding lldpStatusDir entry for cell: 2"));
   ASSERT_TRUE(peer());
   count(*peer(), 7);

   cellDirSm->close();
   keepPeer();
   EXPECT_EQ(context.takeTraces().back(), " Skipping lldpStatusDir for cell: 2");
   EXPECT_EQ(peer()->remTablesInserts(), 7u) << "it survives this agent";

   cellDir->createEntity("1", "Rex::Dir");
   cellDir->deleteEntity("1");
   EXPECT_EQ(statusDir->entityPtrs(), 1u) << "this cell's is not its business";
   context.takeTraces();
   cellDir->deleteEntity("2");
   EXPECT_THAT(context.takeTraces(),
               ElementsAre(handler, " Removing lldpStatusDir entry for cell: 2"));
   EXPECT_EQ(statusDir->entityPtrs(), 0u);
   cellDir->createEntity("2", "Rex::Dir");
   EXPECT_EQ(peer()->remTablesInserts(), 0u) << "one that is inserted again begins anew";
}

TEST_F(StandbyCellDir, LeftoverOfAPeerThatIsNotThereGoesAtTheStart) {
   peer();
   peer("1");
   keepPeer();
   EXPECT_FALSE(statusDir->entityPtrHas("2"));
   EXPECT_TRUE(statusDir->entityPtrHas("1"));
}
