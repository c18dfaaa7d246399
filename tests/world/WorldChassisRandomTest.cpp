// A random chassis: cables, settings and clear requests, supervisors that are pulled, die, lose the
// store and take over, a store that forgets. In every quiet moment all processes and the store have
// the same, and the merged table is what the two statuses say.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <random>

#include "support/Chassis.h"
#include "support/Seeds.h"

using namespace LldpTest;
using Redundancy::modeActive;
using Redundancy::modeStandby;

namespace {

constexpr int defaultSteps = 40;

class RandomChassis {
 public:
   explicit RandomChassis(unsigned seed) : random_(seed), chassis_(world_, seed) {
      // Either may be the first.
      const int first = flip() ? 1 : 2;
      for (int cell : {first, 3 - first}) {
         chassis_.start(cell, cell == 1 ? modeActive : modeStandby);
         if (flip()) rest();
      }
      settle();
   }

   // Some deeds, each with some time for it or none, until all is quiet. Returns what is broken.
   std::vector<std::string> step() {
      deeds_ = "after";
      for (size_t deeds = 1 + pick(6); deeds; --deeds) {
         act();
         rest();
      }
      settle();
      std::vector<std::string> broken = chassis_.check();
      if (!broken.empty()) broken.push_back(deeds_);
      note();
      return broken;
   }

   int takeovers() const { return takeovers_; }
   // Neighbours that came, of both.
   uint32_t learned() const { return learned_; }

 private:
   size_t pick(size_t count) { return random_() % count; }
   bool flip() { return random_() % 2; }
   // The one that is to be active.
   Supervisor& active() { return chassis_.cell(active_); }
   void rest() {
      static constexpr std::array<double, 7> times = {0, 0, 0.001, 0.3, 2, 11, 45};
      chassis_.run(times[pick(times.size())]);
   }
   void settle() {
      chassis_.quiet();
      // Whoever is to be active runs.
      if (chassis_.process(active_)) return;
      chassis_.start(active_, modeActive);
      chassis_.quiet();
   }
   void note() {
      uint32_t inserts = active().allStatus()->remTablesInserts();
      if (inserts > inserts_) learned_ += inserts - inserts_;
      inserts_ = inserts;
   }
   template <class Deed>
   void onAnyPort(const Deed& deed) {
      const char* name = Chassis::cables[pick(Chassis::cables.size())].port;
      for (int cell : {1, 2}) deed(chassis_.cell(cell).port(name));
   }

   void act() {
      switch (pick(12)) {
         case 0:
            deeds_ += ", link";
            return onAnyPort([up = pick(4) > 0](Port& port) { port.linkIs(up); });
         case 1:
            deeds_ += ", forwarding model";
            return onAnyPort([model = pick(4) ? 3 : pick(5)](Port& port) {
               port.forwardingModelIs(static_cast<Interface::IntfForwardingModel>(model));
            });
         case 2:
            deeds_ += ", neighbours' hold time";
            return chassis_.peer.cli()->messageTxHoldTimeIs(flip() ? 1 : 120);
         case 3:
            return configure();
         case 4:
            return actOnPresence();
         case 5:
            return actOnProcess(1 + static_cast<int>(pick(2)));
         case 6:
            return switchOver();
         case 7:
         case 8:
            return actOnConnection(1 + static_cast<int>(pick(2)));
         case 9:
            if (pick(3)) return;
            deeds_ += ", store emptied";
            return chassis_.store.empty();
         case 10:
            deeds_ += ", list trimmed";
            return chassis_.store.trim(1 + pick(6));
         default:
            return;
      }
   }
   void configure() {
      deeds_ += ", settings";
      auto& platform = chassis_.platform;
      auto cli = platform.at<Lldp::CliConfig>("l2discovery/lldp/cliConfig");
      switch (pick(4)) {
         case 0:
            return platform.at<Lldp::RemTablesCliConfig>("l2discovery/lldp/remTablesCliConfig")
                ->remTablesClearRequestIs({world_.now(), "admin", "vty1"});
         case 1:
            return cli->messageTxIntervalIs(static_cast<uint32_t>(1 + pick(30)));
         case 2:
            return cli->tlvSysNameIs(flip());
         default:
            return cli->enabledIs(pick(4) > 0);
      }
   }
   void actOnPresence() {
      const int other = 3 - active_;
      if (chassis_.process(other)) {
         // One that is pulled loses its power first.
         deeds_ += ", pulled";
         chassis_.kill(other);
         chassis_.pull(other);
      } else {
         deeds_ += ", inserted";
         chassis_.start(other, modeStandby);
      }
   }
   void actOnProcess(int cell) {
      const std::string name = std::to_string(cell);
      if (!chassis_.process(cell)) {
         deeds_ += ", start of " + name;
         chassis_.start(cell, cell == active_ ? modeActive : modeStandby);
      } else if (flip()) {
         deeds_ += ", stop of " + name;
         chassis_.stop(cell);
      } else {
         deeds_ += ", death of " + name;
         chassis_.kill(cell);
         if (flip()) chassis_.start(cell, cell == active_ ? modeActive : modeStandby);
      }
   }
   void actOnConnection(int cell) {
      auto* process = chassis_.process(cell);
      if (!process) return;
      auto& client = process->client();
      const std::string name = " of " + std::to_string(cell);
      switch (pick(4)) {
         case 0:
            deeds_ += ", cut" + name;
            return client.cut(flip());
         case 1:
            deeds_ += ", connected" + name;
            return client.connect();
         case 2:
            deeds_ += ", slow" + name;
            client.askedWaits = flip();
            client.toldWaits = flip();
            return;
         default:
            client.askedWaits = client.toldWaits = false;
      }
   }
   void switchOver() {
      deeds_ += ", switchover";
      if (flip()) {
         deeds_ += " from a dead one";
         chassis_.kill(active_);
      }
      active_ = 3 - active_;
      chassis_.activeIs(active_);
      ++takeovers_;
   }

   std::mt19937 random_;
   World world_;
   Chassis chassis_;
   int active_ = 1;
   std::string deeds_;
   int takeovers_ = 0;
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
   EXPECT_GT(chassis.takeovers(), steps / 10);
   EXPECT_GT(chassis.learned(), static_cast<uint32_t>(steps / 5));
}

}  // namespace

TEST(WorldChassisRandom, MergedTableIsWhatBothStatusesSay) {
   liveSeeds(5, defaultSteps, live);
}
