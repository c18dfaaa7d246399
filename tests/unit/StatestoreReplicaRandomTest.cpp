// Processes on one store that write, lose it, come back and start again in an order of a seed's.
// After each quiet moment all have the same, and the store too.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "Rex/Dir.h"
#include "model/Config.h"
#include "model/LocalSystem.h"
#include "model/Status.h"
#include "support/Seeds.h"
#include "support/StoreContents.h"
#include "support/StoreProcess.h"
#include "unit/RexFixture.h"

using namespace LldpTest;

namespace {

struct ReplicaWorld {
   static constexpr int processes = 3;
   std::shared_ptr<Rex::ManualTime> time = std::make_shared<Rex::ManualTime>();
   Rex::Ptr<Rex::Clock> clock = Rex::make<Rex::Clock>(time);
   std::mt19937 random;
   SimulatedStore store;
   std::vector<std::unique_ptr<StoreProcess>> all;
   int starts = 0;

   explicit ReplicaWorld(unsigned seed) : random(seed), store(seed) {
      for (int i = 0; i < processes; ++i) all.push_back(start());
   }
   int below(int n) { return static_cast<int>(random() % static_cast<unsigned>(n)); }
   bool oneIn(int n) { return below(n) == 0; }
   Wirekit::IntfId port() { return Wirekit::IntfId("Ethernet" + std::to_string(1 + below(3))); }

   static void mount(StoreProcess& process) {
      process.at<Lldp::Config>("config");
      process.at<Lldp::LocalSystem>("localSystem");
      process.at<Rex::Dir>("status");
      process.at<Lldp::AllStatus>("all");
   }
   std::unique_ptr<StoreProcess> start() {
      auto process = std::make_unique<StoreProcess>(store, clock, "w" + std::to_string(++starts));
      mount(*process);
      return process;
   }
   // One change by a process, as a handler or from outside.
   void write(StoreProcess& process) {
      Rex::ContextScope scope(process.context);
      auto change = [&] {
         switch (below(4)) {
            case 0:
               return writeConfig(*process.at<Lldp::Config>("config"));
            case 1:
               return writeLocalSystem(process);
            case 2:
               return writeStatus(process);
            default:
               return writeAll(process);
         }
      };
      if (oneIn(2)) {
         Rex::Dispatcher::run([&] {
            for (int i = below(4); i >= 0; --i) change();
         });
      } else {
         change();
      }
   }
   void writeConfig(Lldp::Config& config) {
      auto key = port();
      switch (below(4)) {
         case 0:
            return config.txDelayIs(static_cast<uint32_t>(below(5)));
         case 1:
            return config.portConfigDel(key);
         case 2:
            return config.messageTxIntervalIs(static_cast<uint32_t>(below(5)));
         default: {
            auto row = config.portConfigIs(key);
            row->maxRemoteSystemsIs(static_cast<uint32_t>(below(5)));
            Lldp::NetworkPolicyConfig policy;
            if (oneIn(2))
               row->networkPolicyConfigIs(policy);
            else
               row->networkPolicyConfigDel(policy.appType);
         }
      }
   }
   void writeLocalSystem(StoreProcess& process) {
      auto system = process.at<Lldp::LocalSystem>("localSystem");
      auto key = port();
      auto row = system->localPortIs(key);
      switch (below(5)) {
         case 0:
            return system->localPortDel(key);
         case 1:
            return row->portDescIs(
                Lldp::BoundedString255(Rex::String(oneIn(2) ? "\xff\x01" : "text")));
         case 2:
            return row->localPortPoeInfoIs(nullptr);
         case 3:
            return row->initilizeLocalPortPoeInfo();
         default: {
            if (!row->localPortPoeInfo()) return;
            Rex::Ptr<const Lldp::RemoteSystem> pointee;
            if (auto status = anyPortStatus(process)) {
               for (auto [index, remote] : status->remoteSystem()) pointee = remote;
            }
            row->localPortPoeInfo()->remoteSystemIs(pointee);
         }
      }
   }
   Rex::Ptr<Lldp::Status> anyStatus(StoreProcess& process) {
      auto dir = process.at<Rex::Dir>("status");
      return Rex::dynamicPtr<Lldp::Status>(dir->entityPtr(Rex::String(oneIn(2) ? "1" : "2")));
   }
   Rex::Ptr<Lldp::PortStatus> anyPortStatus(StoreProcess& process) {
      auto status = anyStatus(process);
      return status ? status->portStatus(port()) : nullptr;
   }
   void writeStatus(StoreProcess& process) {
      auto dir = process.at<Rex::Dir>("status");
      Rex::String name(oneIn(2) ? "1" : "2");
      if (oneIn(12)) return dir->deleteEntity(name);
      auto status = Rex::dynamicPtr<Lldp::Status>(dir->createEntity(name, "Lldp::Status"));
      auto key = port();
      if (oneIn(6)) status->portStatusDel(key);
      auto row = status->portStatusIs(key, double(below(3)));
      int index = below(3);
      if (auto old = row->remoteSystem(index); old && oneIn(2)) {
         row->remoteSystemByMsapDel(old->msap());
         row->remoteSystemDel(index);
      } else {
         Lldp::RemoteSystem::Msap msap;
         msap.chassisIdentifier.subtype = Lldp::ChassisIdSubtype::local;
         msap.portIdentifier.subtype = Lldp::PortIdSubtype::local;
         msap.portIdentifier.value = Lldp::PortId(Rex::String(std::to_string(index)));
         auto made = row->remoteSystemIs(index, msap);
         made->ttlIs(static_cast<uint16_t>(below(100)));
         row->remoteSystemByMsapIs(made);
      }
      row->rxFramesTotalInc(1);
      status->remTablesLastChangeTimeIs(below(3));
   }
   void writeAll(StoreProcess& process) {
      auto merged = process.at<Lldp::AllStatus>("all");
      auto status = anyPortStatus(process);
      if (status && !oneIn(4))
         merged->portStatusIs(status);
      else
         merged->portStatusDel(port());
   }

   void disturb() {
      auto& process = all[static_cast<size_t>(below(processes))];
      switch (below(14)) {
         case 0:
         case 1:
            return process->client.cut(oneIn(2));
         case 2:
         case 3:
         case 4:
            return process->client.connect();
         case 5:
            return oneIn(4) ? store.empty() : store.trim(static_cast<size_t>(1 + below(6)));
         case 6:
            if (oneIn(3)) {
               process = nullptr;
               process = start();
            }
            return;
         case 7:
            store.refuses = oneIn(3);
            return;
         default:
            for (int i = below(12); i >= 0; --i) {
               if (oneIn(4)) clock->runDue();
               store.step();
            }
      }
   }

   void check() {
      store.refuses = false;
      for (auto& process : all) process->client.connect();
      for (int i = 0; i < 8; ++i) {
         time->nowIs(time->now() + 30);
         quiet(store, *clock);
      }
      auto fresh = start();
      quiet(store, *clock);
      const std::vector<std::string> paths = fresh->tree().paths();
      const Contents right = contents(fresh->tree(), paths);
      for (auto& process : all) {
         EXPECT_TRUE(process->replica->idle());
         EXPECT_EQ(differences(right, contents(process->tree(), paths)), "")
             << process->client.name;
         EXPECT_EQ(process->replica->refused(), 0u);
      }
      EXPECT_TRUE(fresh->replica->idle());
      EXPECT_THAT(rowFaults(store, *fresh), testing::IsEmpty());
   }
};

}  // namespace

TEST(StatestoreReplicaRandomTest, AllAgreeAfterEachQuietMoment) {
   liveSeeds(5, 400, [](unsigned seed, int steps) {
      ReplicaWorld world(seed);
      for (int step = 1; step <= steps; ++step) {
         if (world.oneIn(3))
            world.disturb();
         else
            world.write(*world.all[static_cast<size_t>(world.below(ReplicaWorld::processes))]);
         if (step % 40) continue;
         world.check();
         ASSERT_FALSE(testing::Test::HasFailure()) << "at step " << step;
      }
   });
}
