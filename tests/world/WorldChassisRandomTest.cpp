// A random chassis: cables, settings and clear requests, supervisors that are pulled, die and take
// over, and after every step the merged table is what the two statuses say.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <random>

#include "support/Chassis.h"
#include "support/MergedStatusModel.h"
#include "support/Seeds.h"

using namespace LldpTest;
using Redundancy::modeActive;
using Redundancy::modeStandby;

namespace {

constexpr int defaultSteps = 300;

class RandomChassis {
 public:
   explicit RandomChassis(unsigned seed) : random_(seed) {
      activate(1);
      standBy(2);
      rest(0.01);
   }
   ~RandomChassis() { model_->close(); }

   // One random deed, some time, and a check from both sides. Returns what is broken.
   std::vector<std::string> step() {
      deed_ = "";
      act();
      static constexpr std::array<double, 6> times = {0, 0.001, 0.5, 2, 11, 45};
      rest(times[pick(times.size())]);
      missed_ += model_->missing();
      uint32_t inserts = active().allStatus()->remTablesInserts();
      if (inserts > inserts_) learned_ += inserts - inserts_;
      inserts_ = inserts;
      std::vector<std::string> broken;
      for (int cell : {1, 2}) {
         for (const auto& words : model_->check(chassis_.cell(cell))) {
            broken.push_back(words + " as cell " + std::to_string(cell) + " sees it, after " +
                             deed_);
         }
      }
      return broken;
   }

   int takeovers() const { return takeovers_; }
   // Neighbours that came, of both.
   uint32_t learned() const { return learned_; }
   // Ports that the merged table was without, in all steps.
   size_t missed() const { return missed_; }

 private:
   size_t pick(size_t count) { return random_() % count; }
   bool flip() { return random_() % 2; }
   Supervisor& active() { return chassis_.cell(active_); }
   Supervisor& other() { return chassis_.cell(3 - active_); }
   void rest(double seconds) {
      world_.run(seconds);
      chassis_.store.settle();
   }
   template <class Deed>
   void onAnyPort(const Deed& deed) {
      const char* name = Chassis::cables[pick(Chassis::cables.size())].port;
      for (int cell : {1, 2}) deed(chassis_.cell(cell).port(name));
   }

   void activate(int cell) {
      if (model_) model_->close();
      active_ = cell;
      if (active().agent()) {
         chassis_.roleIs(cell, modeActive);
      } else {
         chassis_.start(cell, modeActive);
         rest(0);  // its mounts
      }
      model_ = Rex::make<MergedStatusModel>(active());
   }
   void standBy(int cell) { chassis_.start(cell, modeStandby); }

   void act() {
      switch (pick(9)) {
         case 0:
            deed_ = "link";
            return onAnyPort([up = pick(4) > 0](Port& port) { port.linkIs(up); });
         case 1:
            deed_ = "forwarding model";
            return onAnyPort([model = pick(4) ? 3 : pick(5)](Port& port) {
               port.forwardingModelIs(static_cast<Interface::IntfForwardingModel>(model));
            });
         case 2:
            deed_ = "neighbours' hold time";
            return chassis_.peer.cli()->messageTxHoldTimeIs(flip() ? 1 : 120);
         case 3:
            deed_ = "clear";
            return active().clearNeighbors(world_.now());
         case 4:
            deed_ = "VRF";
            active().status()->mgmtAddrVrfIs(L3::VrfName(flip() ? "red" : "blue"));
            if (auto status = other().status()) status->mgmtAddrVrfIs(L3::VrfName("green"));
            return;
         case 5:
            return actOnPresence();
         case 6:
            return actOnStandby();
         case 7:
            deed_ = "restart of the active agent";
            active().stop();
            return activate(active_);
         default:
            return switchOver();
      }
   }
   void actOnPresence() {
      bool present = flip();
      deed_ = present ? "inserted" : "pulled";
      // One that is pulled loses its power first.
      if (!present) other().stop();
      active().cellPresentIs(3 - active_, present);
   }
   void actOnStandby() {
      deed_ = other().agent() ? "death of the standby" : "start of a standby";
      if (other().agent()) {
         other().stop();
      } else {
         standBy(3 - active_);
      }
   }
   void switchOver() {
      deed_ = "switchover";
      if (!other().status() && other().agent()) return;  // it has nothing to begin with
      int former = active_;
      bool dies = flip();
      active().stop();
      if (dies) leaveRows(active());
      activate(3 - former);
      active().cellPresentIs(active_, true);
      ++takeovers_;
   }
   // As a process leaves them that is gone at once.
   void leaveRows(Supervisor& dead) {
      deed_ += " from a dead active";
      for (const Chassis::Cable& cable : Chassis::cables) {
         Wirekit::IntfId intfId(cable.port);
         if (cable.cell == 0)
            dead.status()->portStatusIs(intfId, world_.now())->rxFramesTotalInc(1);
      }
   }

   std::mt19937 random_;
   World world_;
   Chassis chassis_{world_};
   int active_ = 1;
   Rex::Ptr<MergedStatusModel> model_;
   std::string deed_;
   int takeovers_ = 0;
   size_t missed_ = 0;
   uint32_t inserts_ = 0;
   uint32_t learned_ = 0;
};

void live(unsigned seed, int steps) {
   RandomChassis chassis(seed);
   for (int i = 0; i < steps; ++i) {
      auto broken = chassis.step();
      ASSERT_THAT(broken, testing::IsEmpty()) << "step " << i;
   }
   // A world in which nothing happens would agree with every model.
   EXPECT_GT(chassis.takeovers(), steps / 30);
   EXPECT_GT(chassis.learned(), static_cast<uint32_t>(steps / 5));
   EXPECT_GT(chassis.missed(), 0u);
}

}  // namespace

TEST(WorldChassisRandom, MergedTableIsWhatBothStatusesSay) {
   liveSeeds(5, defaultSteps, live);
}
