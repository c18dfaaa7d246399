// A random world: switches, cables and the people around them do whatever they like, and the
// invariants of the tables hold after every step.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <random>

#include "support/Engine.h"
#include "support/FrameBuilder.h"
#include "support/Invariants.h"
#include "support/Seeds.h"
#include "support/World.h"

using namespace LldpTest;

namespace {

constexpr int defaultSteps = 400;
constexpr int agents = 3;
constexpr std::array<const char*, 4> portNames = {"Ethernet1", "Ethernet2", "Ethernet3/1",
                                                  "Management1"};

class RandomWorld {
 public:
   explicit RandomWorld(unsigned seed) : random_(seed) {
      for (int i = 0; i < 3; ++i) wires_.push_back(world_.wire());
      for (int i = 0; i < agents; ++i) {
         auto& agent = world_.agent(std::string(1, static_cast<char>('a' + i)));
         for (const char* name : portNames) agent.port(name).plug(anyWire());
      }
      world_.run(0.01);
   }

   // One random deed, some time, and a check of everybody. Returns what is broken.
   std::vector<std::string> step() {
      deed_ = "";
      act(*world_.supervisors()[pick(agents)]);
      static constexpr std::array<double, 6> times = {0, 0.001, 0.5, 2, 11, 45};
      // What was changed is settled by the timers that are due now.
      world_.run(times[pick(times.size())]);
      std::vector<std::string> broken;
      for (int i = 0; i < agents; ++i) {
         for (const auto& words : invariants_[i].check(*world_.supervisors()[i])) {
            broken.push_back(std::string(1, static_cast<char>('a' + i)) + " " + words + " after " +
                             deed_);
         }
      }
      return broken;
   }

   // Neighbours that were learned and lost so far, of all agents.
   std::pair<uint32_t, uint32_t> traffic() const {
      uint32_t learned = 0;
      uint32_t lost = 0;
      for (const auto& agent : world_.supervisors()) {
         learned += agent->status()->remTablesInserts();
         lost += agent->status()->remTablesDeletes();
      }
      return {learned, lost};
   }

 private:
   size_t pick(size_t count) { return random_() % count; }
   bool flip() { return random_() % 2; }
   const Rex::Ptr<Wire>& anyWire() { return wires_[pick(wires_.size())]; }
   Port& anyPort(Supervisor& agent) { return agent.port(portNames[pick(portNames.size())]); }

   void act(Supervisor& agent) {
      switch (pick(7)) {
         case 0:
            return actOnInterface(anyPort(agent));
         case 1:
            return actOnCable(anyPort(agent));
         case 2:
            return actOnPortConfig(agent);
         case 3:
            return actOnConfig(agent);
         case 4:
            return actOnSystem(agent);
         case 5:
            return actOnTable(agent);
         default:
            return actOnWire();
      }
   }

   void actOnInterface(Port& port) {
      int rotation = static_cast<int>(pick(3));
      if (!port.present()) {
         deed_ = "enter";
         port.enter(rotation);
      } else if (pick(3) == 0) {
         deed_ = "leave";
         port.leave(rotation);
      } else if (flip()) {
         deed_ = "forwarding model";
         port.forwardingModelIs(static_cast<Interface::IntfForwardingModel>(pick(5)));
      } else {
         deed_ = "MTU";
         port.phy()->maxMtuIs(static_cast<uint16_t>(1500 + pick(3)));
      }
   }
   void actOnCable(Port& port) {
      if (port.present() && flip()) {
         deed_ = "link";
         port.phy()->linkStatusIs(static_cast<Interface::LinkStatus>(pick(3)));
      } else {
         deed_ = "cable";
         port.plug(pick(5) ? anyWire() : nullptr);
      }
   }
   void actOnPortConfig(Supervisor& agent) {
      Wirekit::IntfId intfId(portNames[pick(portNames.size())]);
      if (pick(4) == 0) {
         deed_ = "port configuration deleted";
         agent.cli()->cliPortConfigDel(intfId);
      } else {
         deed_ = "administrative status";
         agent.cli()->cliPortConfigIs(intfId)->adminStatusIs(
             static_cast<Lldp::AdminStatus>(1 + pick(4)));
      }
   }
   void actOnConfig(Supervisor& agent) {
      static constexpr std::array<uint32_t, 5> intervals = {1, 2, 3, 5, 30};
      static constexpr std::array<uint32_t, 5> holdTimes = {1, 4, 20, 120, 70000};
      switch (pick(5)) {
         case 0:
            deed_ = "enabled";
            return agent.cli()->enabledIs(pick(3));
         case 1:
            deed_ = "interval";
            return agent.cli()->messageTxIntervalIs(intervals[pick(5)]);
         case 2:
            deed_ = "hold time";
            return agent.cli()->messageTxHoldTimeIs(holdTimes[pick(5)]);
         case 3:
            deed_ = "reinit delay";
            return agent.cli()->reinitDelayIs(pick(4));
         default:
            deed_ = "TLVs";
            return agent.cli()->tlvSysNameIs(flip());
      }
   }
   void actOnSystem(Supervisor& agent) {
      switch (pick(4)) {
         case 0:
            deed_ = "host name";
            return agent.netStatus()->hostnameIs(Rex::format("host%zu", pick(3)));
         case 1:
            deed_ = "chassis";
            return agent.bridging()->bridgeMacAddrIs(
                {2, 0, 0, 0, 1, static_cast<uint8_t>(pick(20))});
         case 2:
            deed_ = "bypass";
            return agent.dot1x()->lldpBypassIs(flip());
         default:
            deed_ = "restart";
            agent.stop();
            if (flip()) world_.run(1);
            agent.start();
            return;
      }
   }
   void actOnTable(Supervisor& agent) {
      deed_ = "clear";
      if (world_.now() <= lastClear_) return;
      lastClear_ = world_.now();
      invariants_[indexOf(agent)].clearing(agent);
      agent.clearNeighbors(lastClear_);
   }
   void actOnWire() {
      auto& wire = *anyWire();
      switch (pick(4)) {
         case 0:
            deed_ = "bad line";
            wire.fate = [this](const auto&, const auto&) {
               std::vector<double> copies;
               for (size_t n = pick(4); n > 1; --n) copies.push_back(0.1 * double(pick(30)));
               return copies;
            };
            return;
         case 1:
            deed_ = "good line";
            wire.fate = nullptr;
            return;
         case 2: {
            deed_ = "crafted frame";
            std::string lldpdu = mandatory(static_cast<uint32_t>(pick(4)), pick(3) ? 30 : 0) +
                                 tlv(5, "crafted") + endOfLldpdu();
            wire.frameIs(octetsOf(ethFrame(lldpdu)));
            return;
         }
         default: {
            deed_ = "broken frame";
            std::string frame = ethFrame(typicalLldpdu(static_cast<uint32_t>(pick(4))));
            frame.resize(14 + pick(frame.size() - 14));
            for (size_t n = pick(4); n > 0 && frame.size() > 14; --n) {
               frame[14 + pick(frame.size() - 14)] = static_cast<char>(random_());
            }
            wire.frameIs(octetsOf(frame));
            return;
         }
      }
   }
   size_t indexOf(Supervisor& agent) const {
      for (size_t i = 0; i < agents; ++i) {
         if (world_.supervisors()[i].get() == &agent) return i;
      }
      return 0;
   }

   std::mt19937 random_;
   World world_;
   std::vector<Rex::Ptr<Wire>> wires_;
   std::array<Invariants, agents> invariants_;
   double lastClear_ = 0;
   std::string deed_;
};

void live(unsigned seed, int steps) {
   RandomWorld world(seed);
   for (int i = 0; i < steps; ++i) {
      auto broken = world.step();
      ASSERT_THAT(broken, testing::IsEmpty()) << "step " << i;
   }
   // A world in which nothing happens would keep every invariant.
   auto [learned, lost] = world.traffic();
   EXPECT_GT(learned, static_cast<uint32_t>(steps / 10));
   EXPECT_GT(lost, static_cast<uint32_t>(steps / 10));
}

}  // namespace

TEST(WorldRandom, InvariantsHold) {
   liveSeeds(5, defaultSteps, live);
}
