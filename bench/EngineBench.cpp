// The engine with many neighbours: one received frame, from its arrival at the port to the end of
// all that it sets off; and what wakes an agent that has nothing to do.
#include <benchmark/benchmark.h>

#include <cstring>
#include <memory>
#include <random>
#include <vector>

#include "support/Engine.h"
#include "support/FrameBuilder.h"
#include "support/TestContext.h"

namespace {

using LldpTest::Engine;

// An engine whose neighbours are spread over its ports in turn. Their table is filled in one random
// order and read in another, so that neither memory nor caches see a pattern.
class Crowd {
 public:
   Crowd(uint32_t neighbours, size_t ports) : neighbours_(neighbours) {
      context_.context().logSink = nullptr;
      engine_.open();
      for (size_t i = 0; i < ports; ++i) {
         auto port = engine_.port("Ethernet" + std::to_string(i + 1));
         port.segment->tap = nullptr;
         port.portConfig->maxRemoteSystemsIs(neighbours);
         port.portConfig->rxRateLimitEnabledIs(false);
         ports_.push_back(port);
      }
      context_.settle();
      for (const auto& port : ports_) pams_.push_back(engine_.pam(port.intfId));
      std::vector<uint32_t> order(neighbours);
      for (uint32_t n = 0; n < neighbours; ++n) order[n] = n;
      std::shuffle(order.begin(), order.end(), random_);
      for (uint32_t n : order) receive(n);
   }

   uint32_t neighbours() const { return neighbours_; }
   size_t ports() const { return ports_.size(); }
   void receiveAny() { receive(static_cast<uint32_t>(random_() % neighbours_)); }
   size_t known() const {
      size_t all = 0;
      for (const auto& port : ports_) all += port.portStatus->remoteSystems();
      return all;
   }

 private:
   // The frame of neighbour `n`. It is made from one that stays in the cache, as a frame does that
   // the device has just delivered.
   void receive(uint32_t n) {
      for (size_t i = 0; i < 4; ++i) frame_[numberAt + i] = static_cast<char>(n >> (24 - 8 * i));
      context_.timeIs(context_.now() + 10e-6);
      pams_[n % pams_.size()]->rxFrameIs(LldpTest::octetsOf(frame_), {});
      context_.settle();
   }

   // Behind the Ethernet header: TLV header, subtype, and the first two octets of the address.
   static constexpr size_t numberAt = 14 + 2 + 1 + 2;

   LldpTest::TestContext context_;
   Engine engine_;
   std::vector<Engine::Port> ports_;
   std::vector<Wirekit::Pam::Ptr> pams_;
   std::string frame_ = LldpTest::ethFrame(LldpTest::typicalLldpdu());
   std::mt19937 random_{1};
   uint32_t neighbours_;
};

// Arguments: neighbours, ports. To be compared along the first.
void engineFrame(benchmark::State& state) {
   static std::unique_ptr<Crowd> crowd;  // kept between the runs of one pair of arguments
   auto neighbours = static_cast<uint32_t>(state.range(0));
   auto ports = static_cast<size_t>(state.range(1));
   if (!crowd || crowd->neighbours() != neighbours || crowd->ports() != ports) {
      crowd.reset();
      crowd = std::make_unique<Crowd>(neighbours, ports);
   }
   for (auto _ : state) crowd->receiveAny();
   if (crowd->known() != neighbours) state.SkipWithError("neighbours lost");
}
BENCHMARK(engineFrame)->ArgsProduct({{10, 1000, 100000}, {1, 48, 512}});

// Ten minutes of an agent with this many ports and no neighbours. What wakes a port: its frame, the
// change from delay to idle two seconds later, and the rate-limit period; 5 for each 30 seconds.
void engineIdle(benchmark::State& state) {
   constexpr double duration = 600;
   size_t wakeups = 0;
   size_t timers = 0;
   for (auto _ : state) {
      LldpTest::TestContext context;
      Engine engine;
      engine.open();
      for (int i = 0; i < state.range(0); ++i) {
         engine.port("Ethernet" + std::to_string(i + 1)).segment->tap = nullptr;
      }
      context.advance(60);
      double end = context.now() + duration;
      auto& clock = *context.context().clock();
      wakeups = timers = 0;
      while (clock.nextTime() <= end) {
         context.timeIs(clock.nextTime());
         timers += context.settle();
         ++wakeups;
      }
   }
   state.counters["wakeups"] = double(wakeups);
   state.counters["timersPerPortAndInterval"] =
       double(timers) / double(state.range(0)) / (duration / 30);
}
BENCHMARK(engineIdle)->Arg(512)->Iterations(1)->Unit(benchmark::kMillisecond);

}  // namespace
