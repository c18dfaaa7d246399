// When packet access objects come and go.
#include <gtest/gtest.h>

#include <string>

#include "Interface/EthDevPamManager.h"
#include "Interface/SegmentPam.h"
#include "Rex/Log.h"
#include "unit/RexFixture.h"

namespace Interface {
namespace {

using Wirekit::IntfId;

const IntfId eth1("Ethernet1");
const IntfId eth2("Ethernet2");

// Writes down every entry that comes (+) or goes (-), with its device's place in the maker.
class StorySm : public Rex::StateMachine {
 public:
   StorySm(Rex::Ptr<EthDevPamCollection> collection, std::string& story)
       : collection_(collection), story_(story) {
      on(collection_, EthDevPamCollection::intfPamAttr, &StorySm::handlePam);
   }

 private:
   void handlePam(IntfId intfId) {
      story_ += collection_->intfPamHas(intfId) ? '+' : '-';
      story_ += intfId.stringValue().charPtr()[8];
   }
   Rex::Ptr<EthDevPamCollection> collection_;
   std::string& story_;
};

// Fails as often as it is told to.
class MoodyMaker : public SegmentPamMaker {
 public:
   Made make(const DeviceIntfStatus& device, const PamConfig& config) override {
      ++asked;
      if (failures > 0) {
         --failures;
         return {nullptr, "no luck"};
      }
      return SegmentPamMaker::make(device, config);
   }
   int asked = 0;
   int failures = 0;
};

class EthDevPamManagerTest : public RexFixture {
 protected:
   EthDevPamManagerTest() {
      context.serviceIs<PamMaker>(maker);
      maker->plug("e1", nullptr);
      maker->plug("e2", nullptr);
      manager->enabledIs(true);
   }
   ~EthDevPamManagerTest() override {
      manager->close();
      story_->close();
   }

   void wish(const IntfId& intfId, const char* device, int ifIndex) {
      devices->intfStatusIs({intfId, device, ifIndex});
      desired->intfDesiredIs(intfId, true);
   }
   void turn() { pass(); }
   std::string take() { return std::exchange(story, ""); }

   std::shared_ptr<MoodyMaker> maker = std::make_shared<MoodyMaker>();
   std::string story;
   Rex::Ptr<PamDesiredIntfDir> desired = Rex::make<PamDesiredIntfDir>();
   Rex::Ptr<EthDevPamCollection> pams = Rex::make<EthDevPamCollection>();
   Rex::Ptr<DeviceIntfStatusDir> devices = Rex::make<DeviceIntfStatusDir>();
   Rex::Ptr<EthDevPamManager> manager = Rex::make<EthDevPamManager>(desired, pams, devices);

 private:
   Rex::Ptr<StorySm> story_ = Rex::make<StorySm>(pams, story);
};

TEST_F(EthDevPamManagerTest, anEntryStandsWhileDesiredAndADeviceAndEnabled) {
   wish(eth1, "e1", 11);
   EXPECT_EQ(take(), "");  // never inside the call that asks for it
   turn();
   EXPECT_EQ(take(), "+1");
   EXPECT_EQ(pams->intfPams(), 1u);

   const std::pair<std::function<void()>, std::function<void()>> switches[] = {
       {[&] { desired->intfDesiredDel(eth1); }, [&] { desired->intfDesiredIs(eth1, true); }},
       {[&] { desired->intfDesiredIs(eth1, false); }, [&] { desired->intfDesiredIs(eth1, true); }},
       {[&] { devices->intfStatusDel(eth1); },
        [&] {
           devices->intfStatusIs({eth1, "e1", 12});
        }},
       {[&] { manager->enabledIs(false); }, [&] { manager->enabledIs(true); }},
   };
   for (const auto& [off, on] : switches) {
      off();
      EXPECT_EQ(take(), "");
      turn();
      EXPECT_EQ(take(), "-1");
      EXPECT_EQ(pams->intfPams(), 0u);
      on();
      turn();
      EXPECT_EQ(take(), "+1");
   }
}

TEST_F(EthDevPamManagerTest, aWishTakenBackBeforeTheTurnNeverHappenedAndASwitchStartsOver) {
   wish(eth1, "e1", 11);
   turn();
   take();
   auto before = pams->intfPam(eth1);
   desired->intfDesiredDel(eth1);
   desired->intfDesiredIs(eth1, true);
   turn();
   turn();
   EXPECT_EQ(take(), "");
   EXPECT_EQ(pams->intfPam(eth1), before);
   manager->enabledIs(false);
   manager->enabledIs(true);
   turn();
   turn();
   EXPECT_EQ(take(), "-1+1");
   EXPECT_NE(pams->intfPam(eth1), before);
}

TEST_F(EthDevPamManagerTest, aDeviceThatCameBackIsOpenedAnewInALaterTurn) {
   wish(eth1, "e1", 11);
   wish(eth2, "e2", 12);
   turn();
   EXPECT_EQ(take(), "+1+2");
   auto before = pams->intfPam(eth1);
   devices->intfStatusDel(eth1);
   devices->intfStatusIs({eth1, "e1", 99});
   turn();
   EXPECT_EQ(take(), "-1");  // the two changes of one key are seen one by one
   EXPECT_TRUE(before->closed());
   turn();
   EXPECT_EQ(take(), "+1");
   EXPECT_NE(pams->intfPam(eth1), before);
}

TEST_F(EthDevPamManagerTest, aDeviceThatCannotBeOpenedIsTriedAgainAndReported) {
   std::vector<std::string> logged;
   context.logSink = [&](const Rex::LogEvent& event) { logged.push_back(event.text); };
   maker->failures = 3;
   wish(eth1, "e1", 11);
   turn();
   ASSERT_EQ(logged.size(), 1u);
   EXPECT_NE(logged[0].find("Ethernet1 (device e1) failed: no luck"), std::string::npos);
   std::vector<double> waits;
   while (context.clock()->nextTime() != Rex::never) {
      waits.push_back(context.clock()->nextTime() - time->now());
      time->nowIs(context.clock()->nextTime());
      turn();
   }
   EXPECT_EQ(waits, (std::vector<double>{1, 2, 4}));
   EXPECT_EQ(take(), "+1");
   EXPECT_EQ(logged.size(), 1u);  // within the event's spacing
}

TEST_F(EthDevPamManagerTest, retriesEndWithTheWishAndStayBounded) {
   maker->failures = 1000;
   wish(eth1, "e1", 11);
   turn();
   double start = time->now();
   while (time->now() < start + 3600) {
      time->nowIs(context.clock()->nextTime());
      turn();
   }
   EXPECT_NEAR(maker->asked, 3600 / 32 + 6, 3);
   desired->intfDesiredDel(eth1);
   turn();
   EXPECT_EQ(context.clock()->nextTime(), Rex::never);
}

TEST_F(EthDevPamManagerTest, closingTheManagerEmptiesTheCollection) {
   wish(eth1, "e1", 11);
   wish(eth2, "e2", 12);
   turn();
   auto pam = pams->intfPam(eth1);
   take();
   manager->close();
   EXPECT_EQ(take(), "-1-2");
   EXPECT_TRUE(pam->closed());
   manager->enabledIs(true);
   turn();
   EXPECT_EQ(pams->intfPams(), 0u);
}

}  // namespace
}  // namespace Interface
