// Processes that meet in a store: what each is told of what others write, and in which order.
#include <gmock/gmock.h>

#include "Foreign/Redundancy.h"
#include "Rex/Dir.h"
#include "model/CliConfig.h"
#include "model/Config.h"
#include "model/LocalSystem.h"
#include "model/Status.h"
#include "support/ChangeLog.h"
#include "support/StoreProcess.h"
#include "unit/RexFixture.h"

using namespace LldpTest;
using testing::ElementsAre;

struct StatestoreReplicaTest : RexFixture {
   SimulatedStore store;
   StoreProcess a{store, clock, "a"}, b{store, clock, "b"};

   void settle() { quiet(store, *clock); }
   static Wirekit::IntfId port(int n) { return Wirekit::IntfId("Ethernet" + std::to_string(n)); }
   // A port's status with a neighbour, as the engine makes it: in one reaction.
   static void addPort(Lldp::Status& status, int n) {
      Rex::Dispatcher::run([&] {
         auto made = status.portStatusIs(port(n), 1000.0);
         addNeighbour(*made, n);
      });
   }
   static void addNeighbour(Lldp::PortStatus& made, int index) {
      Lldp::RemoteSystem::Msap msap;
      msap.chassisIdentifier.subtype = Lldp::ChassisIdSubtype::local;
      msap.portIdentifier.subtype = Lldp::PortIdSubtype::local;
      msap.portIdentifier.value = Lldp::PortId(Rex::String(std::to_string(index)));
      auto neighbour = made.remoteSystemIs(index, msap);
      neighbour->ttlIs(120);
      made.remoteSystemByMsapIs(neighbour);
   }
   static Rex::Json json(const Rex::Ptr<Rex::Entity>& entity) {
      return sorted(Rex::entityToJson(*entity));
   }
};

// What a machine sees of a row at the moment that it is told of it.
struct RowWitnessSm : Rex::StateMachine {
   explicit RowWitnessSm(Lldp::Status::Ptr status) : status_(std::move(status)) {
      on(status_, Lldp::Status::portStatusAttr, &RowWitnessSm::handlePort);
   }
   void handlePort(const Wirekit::IntfId& intfId) {
      auto row = status_->portStatus(intfId);
      if (!row) return seen.push_back("removed");
      seen.push_back(std::to_string(row->remoteSystems()) + " of " +
                     std::to_string(row->remoteSystemByMsaps()) + " since " +
                     std::to_string(int(row->creationTime())));
   }
   std::vector<std::string> seen;
   Lldp::Status::Ptr status_;
};

TEST_F(StatestoreReplicaTest, ARowComesWholeAndIsReplacedAsOneThatGoesAndOneThatComes) {
   auto ours = a.at<Lldp::Status>("status"), theirs = b.at<Lldp::Status>("status");
   settle();
   auto witness = Rex::make<RowWitnessSm>(theirs);
   addPort(*ours, 1);
   settle();
   auto first = theirs->portStatus(port(1));
   EXPECT_EQ(first->remoteSystem(1)->ttl(), 120);
   ours->portStatusDel(port(1));
   ours->portStatusIs(port(1), 2000.0);
   settle();
   EXPECT_THAT(witness->seen, ElementsAre("1 of 1 since 1000", "removed", "0 of 0 since 2000"));
   EXPECT_NE(theirs->portStatus(port(1)), first);
   EXPECT_EQ(json(ours), json(theirs));
   witness->close();
}

TEST_F(StatestoreReplicaTest, ReadersAreToldInTheOrderOfTheLastWritesAndSendNothingBack) {
   auto ours = a.at<Lldp::Status>("status"), theirs = b.at<Lldp::Status>("status");
   addPort(*ours, 1);
   settle();
   auto log = Rex::make<ChangeLog>(std::vector<Rex::Ptr<const Rex::Entity>>{theirs});
   ours->remTablesInsertsInc(1);
   ours->remTablesLastChangeTimeIs(5);
   ours->remTablesDeletesInc(1);
   ours->remTablesLastChangeTimeIs(6);
   settle();
   EXPECT_THAT(log->take(), ElementsAre("Status.remTablesInserts", "Status.remTablesDeletes",
                                        "Status.remTablesLastChangeTime"));
   // A stamp counts at every write, a value when it differs.
   ours->remTablesLastChangeTimeIs(6);
   ours->remTablesInsertsIs(1);
   settle();
   EXPECT_THAT(log->take(), ElementsAre("Status.remTablesLastChangeTime"));
   EXPECT_EQ(b.client.changes, 0u);
   log->close();
}

TEST_F(StatestoreReplicaTest, WhatLivesElsewhereIsPointedAtAsLongAsItStands) {
   auto merged = a.at<Lldp::AllStatus>("all"), theirMerged = b.at<Lldp::AllStatus>("all");
   auto system = a.at<Lldp::LocalSystem>("system"), theirSystem = b.at<Lldp::LocalSystem>("system");
   auto status = a.at<Lldp::Status>("status");
   addPort(*status, 1);
   merged->portStatusIs(status->portStatus(port(1)));
   auto local = system->localPortIs(port(1));
   local->initilizeLocalPortPoeInfo();
   local->localPortPoeInfo()->remoteSystemIs(status->portStatus(port(1))->remoteSystem(1));
   settle();
   auto theirInfo = theirSystem->localPort(port(1))->localPortPoeInfo();
   ASSERT_TRUE(theirInfo);
   EXPECT_FALSE(theirInfo->remoteSystem());
   EXPECT_FALSE(theirMerged->portStatusHas(port(1)));

   auto theirStatus = b.at<Lldp::Status>("status");
   settle();
   auto theirPort = theirStatus->portStatus(port(1));
   EXPECT_EQ(theirMerged->portStatus(port(1)).get(), theirPort.get());
   EXPECT_EQ(theirInfo->remoteSystem().get(), theirPort->remoteSystem(1).get());

   theirStatus->portStatusDel(port(1));
   settle();
   EXPECT_FALSE(theirInfo->remoteSystem());
   EXPECT_FALSE(merged->portStatusHas(port(1)));
   EXPECT_EQ(json(merged), json(theirMerged));
}

TEST_F(StatestoreReplicaTest, TwoThatWriteAtOnceEndAlike) {
   auto ours = a.at<Lldp::Config>("config"), theirs = b.at<Lldp::Config>("config");
   auto ourDir = a.at<Rex::Dir>("dir"), theirDir = b.at<Rex::Dir>("dir");
   settle();
   // Both make the roots.
   ours->txDelayIs(3);
   theirs->reinitDelayIs(4);
   ourDir->createEntity("1", "Lldp::Status");
   theirDir->createEntity("2", "Lldp::Status");
   settle();
   EXPECT_EQ(theirs->txDelay(), 3u);
   EXPECT_EQ(ours->reinitDelay(), 4u);
   EXPECT_EQ(ourDir->entityPtrs(), 2u);
   EXPECT_EQ(json(ourDir), json(theirDir));
   for (uint32_t i = 0; i < 20; ++i) {
      ours->txDelayIs(i);
      theirs->txDelayIs(100 + i);
      ours->portConfigDel(port(1));
      theirs->portConfigIs(port(1))->maxRemoteSystemsIs(i);
      for (uint32_t step = 0; step < i % 5; ++step) store.step();
   }
   settle();
   EXPECT_EQ(json(ours), json(theirs));
}

TEST_F(StatestoreReplicaTest, AWriterThatLosesItsConnectionGoesOnWhereItWas) {
   for (bool done : {false, true}) {
      const std::string path = done ? "done" : "lost";
      auto ours = a.at<Lldp::Status>(path), theirs = b.at<Lldp::Status>(path);
      addPort(*ours, 1);
      settle();
      auto log = Rex::make<ChangeLog>(std::vector<Rex::Ptr<const Rex::Entity>>{theirs});
      ours->remTablesInsertsInc(1);
      clock->runDue();
      a.client.cut(done);
      ours->remTablesDeletesInc(1);
      // Each place is pending once, however often it is written, and rows that are gone leave none.
      size_t before = a.client.operations;
      for (int i = 100; i < 1100; ++i) {
         ours->lastPacketParsedTimeIs(i);
         addNeighbour(*ours->portStatus(port(1)), i);
         ours->portStatus(port(1))->remoteSystemByMsapDelAll();
         ours->portStatus(port(1))->remoteSystemDel(i);
      }
      a.client.connect();
      settle();
      EXPECT_THAT(log->take(), ElementsAre("Status.remTablesInserts", "Status.remTablesDeletes",
                                           "Status.lastPacketParsedTime"));
      EXPECT_LT(a.client.operations - before, 2500u);
      EXPECT_EQ(json(ours), json(theirs));
      log->close();
   }
}

// The store took it, and was restarted with what its file had from before.
TEST_F(StatestoreReplicaTest, AChangeThatTheStoreForgotIsSentAgain) {
   auto ours = a.at<Lldp::Status>("status"), theirs = b.at<Lldp::Status>("status");
   ours->remTablesInsertsIs(1);
   settle();
   const auto kept = store.kept();
   ours->remTablesInsertsIs(2);
   clock->runDue();
   ASSERT_TRUE(a.client.serve());
   while (a.client.hear()) {
   }
   a.client.cut(false);
   b.client.cut(false);
   store.restart(kept);
   ours->remTablesDropsIs(3);
   a.client.connect();
   b.client.connect();
   settle();
   EXPECT_EQ(theirs->remTablesInserts(), 2u);
   EXPECT_EQ(theirs->remTablesDrops(), 3u);
}

TEST_F(StatestoreReplicaTest, AReaderThatMissedTooMuchAndAnEmptiedStoreAreBroughtTogether) {
   auto ours = a.at<Lldp::Status>("status"), theirs = b.at<Lldp::Status>("status");
   addPort(*ours, 1);
   addPort(*ours, 2);
   settle();
   auto kept = theirs->portStatus(port(2));
   b.client.cut(false);
   ours->portStatusDel(port(1));
   addPort(*ours, 3);
   settle();
   store.trim(1);
   b.client.connect();
   settle();
   EXPECT_EQ(theirs->portStatus(port(2)), kept);
   EXPECT_EQ(json(ours), json(theirs));

   // The one who wrote it is gone; another restores it.
   const auto rows = store.rows();
   a.replica->detach();
   store.empty();
   settle();
   EXPECT_EQ(store.rows(), rows);
   ours->remTablesInsertsInc(1);
   settle();
   EXPECT_EQ(theirs->remTablesInserts(), 0u);
}

TEST_F(StatestoreReplicaTest, WhatAWriterHasToHoldIsTakenAndNotClaimedBack) {
   auto ours = a.at<Lldp::Status>("role"), theirs = b.at<Lldp::Status>("role");
   theirs->remTablesDropsIs(2);
   settle();
   // Sent only when it is required already.
   ours->remTablesInsertsIs(1);
   clock->runDue();
   ours->remTablesDropsIs(1);
   a.replica->guardIs(
       Statestore::Operation{Statestore::Operation::Kind::require, "role", "remTablesDrops", "1"});
   settle();
   EXPECT_EQ(theirs->remTablesDrops(), 1u);
   // Taken away, and not to be read in the list of changes.
   for (bool emptied : {false, true}) {
      a.client.cut(false);
      theirs->remTablesDropsIs(emptied ? 3 : 2);
      ours->remTablesInsertsIs(2);
      settle();
      emptied ? store.empty() : store.trim(1);
      settle();
      a.client.connect();
      settle();
      EXPECT_EQ(ours->remTablesDrops(), theirs->remTablesDrops());
      EXPECT_EQ(theirs->remTablesDrops(), emptied ? 3u : 2u);
      EXPECT_EQ(theirs->remTablesInserts(), 1u);
   }
}

TEST_F(StatestoreReplicaTest, WhoMadeARowDoesNotUndoAfterACutWhatAnotherWroteInIt) {
   auto ourDir = a.at<Rex::Dir>("dir"), theirDir = b.at<Rex::Dir>("dir");
   auto ours = Rex::make<Lldp::Status>();
   ours->remTablesDropsIs(3);
   ourDir->entityPtrIs("2", ours);
   settle();
   auto theirs = Rex::dynamicPtr<Lldp::Status>(theirDir->entityPtr("2"));
   addPort(*theirs, 1);
   settle();
   a.client.cut(false);
   theirs->portStatusDel(port(1));
   addPort(*theirs, 1);
   theirs->portStatus(port(1))->rxFramesTotalIs(7);
   addPort(*theirs, 2);
   theirs->remTablesInsertsIs(5);
   theirs->remTablesDropsIs(9);
   settle();
   auto replaced = theirs->portStatus(port(1)), added = theirs->portStatus(port(2));
   store.trim(1);
   a.client.connect();
   settle();
   EXPECT_EQ(theirs->portStatus(port(1)), replaced);
   EXPECT_EQ(theirs->portStatus(port(2)), added);
   EXPECT_EQ(ours->remTablesInserts(), 5u);
   EXPECT_EQ(theirs->remTablesDrops(), 3u) << "this the maker has written";
   EXPECT_EQ(json(ours), json(theirs));
}

TEST_F(StatestoreReplicaTest, AMountWaitsForTheStoreAndWhatWasWrittenMeanwhileStands) {
   auto ours = a.at<Lldp::Config>("config");
   ours->txDelayIs(5);
   ours->reinitDelayIs(5);
   settle();
   StoreProcess late(store, clock, "late");
   late.client.cut(false);
   struct : Statestore::Mounter {
      void doMountsComplete(Statestore::MountStatus status,
                            const Rex::Ptr<Statestore::EntityManager>&) override {
         told.push_back(status);
      }
      std::vector<int> told;
   } mounter;
   {
      Rex::ContextScope scope(late.context);
      auto group = late.manager->getMountGroup(&mounter);
      group->doMount({"config", "Lldp::Config", "w"});
      group->doClose(false, "", 0);
   }
   settle();
   late.at<Lldp::Config>("config")->txDelayIs(9);
   EXPECT_TRUE(mounter.told.empty());
   late.client.connect();
   settle();
   EXPECT_THAT(mounter.told, ElementsAre(Statestore::mountSuccess_));
   EXPECT_EQ(ours->txDelay(), 9u);
   EXPECT_EQ(late.at<Lldp::Config>("config")->reinitDelay(), 5u);
}

TEST_F(StatestoreReplicaTest, WrongValuesOfOthersAreLeftOut) {
   using Kind = Statestore::Operation::Kind;
   auto ours = a.at<Lldp::Status>("status");
   auto system = a.at<Lldp::LocalSystem>("system");
   addPort(*ours, 1);
   system->localPortIs(port(1));
   settle();
   const auto status = json(ours), local = json(system);
   auto& other = store.client();
   const Statestore::Operation wrong[] = {
       {Kind::set, "status", "remTablesInserts", "-1"},
       {Kind::set, "status", "remTablesInserts", "{"},
       {Kind::set, "status", "mgmtAddrVrf", std::string(40, '[') + std::string(40, ']')},
       {Kind::set, "status", "mgmtAddrVrf", "\"\xff\""},
       {Kind::set, "status", "none", "1"},
       {Kind::set, "status", "portStatus/Ethernet1", "1"},
       {Kind::set, "status", "portStatus/Ethernet01", "{\"path\":\"status\"}"},
       {Kind::set, "status/portStatus/Ethernet1", "remoteSystemByMsap/x", "{\"path\":\"system\"}"},
       {Kind::remove, "status", "remTablesInserts", ""},
       {Kind::make, "status", "portStatus/Ethernet2", "Lldp::PortStatus"},  // without its keys
       {Kind::make, "status", "portStatus/Ethernet2", "Lldp::LocalPort"},
       {Kind::make, "status", "portStatus/%", "Lldp::PortStatus"},
       {Kind::make, "status", "remTablesInserts", "Lldp::PortStatus"},
       {Kind::make, "system", "localPort/Ethernet1/localPortPoeInfo", "No::Such"},
       {Kind::set, "system/localPort/Ethernet1", "localPortPoeInfo", "{\"path\":\"status\"}"},
   };
   std::string life;
   other.load({}, [&](Statestore::Snapshot snapshot) { life = snapshot.life; });
   settle();
   uint64_t number = 0;
   for (const auto& one : wrong) {
      uint64_t refused = a.replica->refused();
      other.change(life, "other", ++number, {one}, [](Statestore::ChangeResult) {});
      settle();
      EXPECT_EQ(a.replica->refused(), refused + 1)
          << one.row << " " << one.field << " " << one.value;
      EXPECT_EQ(json(ours), status);
      EXPECT_EQ(json(system), local);
   }
}

TEST_F(StatestoreReplicaTest, ARefusedChangeIsTriedAgain) {
   auto ours = a.at<Lldp::Config>("config"), theirs = b.at<Lldp::Config>("config");
   settle();
   store.refuses = true;
   ours->txDelayIs(1);
   settle();
   ours->txDelayIs(2);
   size_t tries = a.client.changes;
   for (int i = 0; i < 100; ++i) {
      pass(1);
      settle();
   }
   EXPECT_LT(a.client.changes - tries, 10u);
   store.refuses = false;
   pass(30);
   settle();
   EXPECT_EQ(theirs->txDelay(), 2u);
}

TEST_F(StatestoreReplicaTest, NothingGoesOutBehindTheChangeThatTakesTheRole) {
   using Redundancy::modeActive;
   using Redundancy::modeStandby;
   auto ours = a.at<Lldp::Config>("config"), theirs = b.at<Lldp::Config>("config");
   auto role = a.at<Redundancy::RedundancyStatus>("role");
   auto theirRole = b.at<Redundancy::RedundancyStatus>("role");
   theirRole->modeIs(modeStandby);
   settle();
   a.replica->guardIs(Statestore::Operation{Statestore::Operation::Kind::require, "role", "mode",
                                            "\"modeActive\""});
   ours->txDelayIs(4);
   pass(2);
   settle();
   EXPECT_EQ(theirs->txDelay(), 2u);
   theirRole->modeIs(modeActive);
   settle();
   pass(2);
   settle();
   EXPECT_EQ(theirs->txDelay(), 4u);
   // Before it hears of it, and without a list that tells.
   for (bool reload : {false, true}) {
      role->modeIs(modeStandby);
      settle();
      role->modeIs(modeActive);  // whoever takes the role does so in its own change
      settle();
      ASSERT_EQ(theirRole->mode(), modeActive);
      if (reload) a.client.cut(false);
      a.client.toldWaits = true;
      theirRole->modeIs(modeStandby);
      settle();
      ours->txDelayIs(5);
      if (reload) store.trim(1);
      a.client.connect();
      settle();
      EXPECT_EQ(theirs->txDelay(), 4u);
      a.client.toldWaits = false;
      settle();
      EXPECT_EQ(role->mode(), modeStandby);
      ours->txDelayIs(4);
      theirRole->modeIs(modeActive);
      settle();
      pass(2);
      settle();
   }
   ours->txDelayIs(7);
   a.replica->freeze();
   ours->txDelayIs(8);
   theirs->reinitDelayIs(9);
   settle();
   EXPECT_EQ(theirs->txDelay(), 7u);
   EXPECT_NE(ours->reinitDelay(), 9u);
   EXPECT_TRUE(a.replica->idle());
}
