// The engine with many neighbours: one received frame, from its arrival at the port to the end of
// all that it sets off; and what wakes an agent that has nothing to do.
#include <benchmark/benchmark.h>
#include <malloc.h>

#include <cstring>
#include <memory>
#include <random>
#include <vector>

#include "Rex/Pool.h"
#include "support/Endpoints.h"
#include "support/FrameBuilder.h"
#include "support/TestContext.h"

namespace {

using LldpTest::Engine;

// An engine whose neighbours are spread over its ports in turn. Their table is filled in one random
// order and read in another, so that neither memory nor caches see a pattern. With `answered` they
// are telephones that ask for power and a policy, each by an address of its own, and the machines
// run that answer them.
class Crowd {
 public:
   Crowd(uint32_t neighbours, size_t ports, bool answered)
       : frame_(LldpTest::ethFrame(answered ? telephone() : LldpTest::typicalLldpdu())),
         neighbours_(neighbours),
         answered_(answered) {
      context_.context().logSink = nullptr;
      engine_.open();
      if (answered) endpoints_.start();
      for (size_t i = 0; i < ports; ++i) {
         auto port = engine_.port("Ethernet" + std::to_string(i + 1));
         port.segment->tap = nullptr;
         port.portConfig->maxRemoteSystemsIs(neighbours);
         port.portConfig->rxRateLimitEnabledIs(false);
         port.localPort->initilizeLocalPortPoeInfo();
         ports_.push_back(port);
      }
      context_.settle();
      for (const auto& port : ports_) pams_.push_back(engine_.pam(port.intfId));
      std::vector<uint32_t> order(neighbours);
      for (uint32_t n = 0; n < neighbours; ++n) order[n] = n;
      std::shuffle(order.begin(), order.end(), random_);
      size_t before = memory();
      for (uint32_t n : order) receive(n);
      octetsPerNeighbour_ = double(memory() - before) / neighbours;
   }

   bool isOf(uint32_t neighbours, size_t ports, bool answered) const {
      return neighbours == neighbours_ && ports == ports_.size() && answered == answered_;
   }
   double octetsPerNeighbour() const { return octetsPerNeighbour_; }
   size_t phones() const { return endpoints_.status->phones(); }
   void receiveAny() { receive(static_cast<uint32_t>(random_() % neighbours_)); }
   size_t known() const {
      size_t all = 0;
      for (const auto& port : ports_) all += port.portStatus->remoteSystems();
      return all;
   }

 private:
   static std::string telephone() {
      return LldpTest::mandatory(1, 65535) + LldpTest::systemCapabilities(0x24, 0x24) +
             LldpTest::organization(LldpTest::dot3, 2, LldpTest::octets("0802056200820082")) +
             LldpTest::organization(LldpTest::tia, 1, LldpTest::octets("003303")) +
             LldpTest::organization(LldpTest::tia, 2, LldpTest::octets("07400000")) +
             LldpTest::endOfLldpdu();
   }
   // The heap and the pool, which takes its memory elsewhere.
   static size_t memory() { return mallinfo2().uordblks + Rex::Pool::inUse(); }

   // The frame of neighbour `n`. It is made from one that stays in the cache, as a frame does that
   // the device has just delivered.
   void receive(uint32_t n) {
      for (size_t i = 0; i < 4; ++i) {
         frame_[numberAt + i] = static_cast<char>(n >> (24 - 8 * i));
         if (answered_) frame_[sourceAt + i] = frame_[numberAt + i];
      }
      context_.timeIs(context_.now() + 10e-6);
      pams_[n % pams_.size()]->rxFrameIs(LldpTest::octetsOf(frame_), {});
      context_.settle();
   }

   // Behind the Ethernet header: TLV header, subtype, and the first two octets of the address.
   static constexpr size_t numberAt = 14 + 2 + 1 + 2;
   // The last octets of the frame's source address.
   static constexpr size_t sourceAt = 6 + 2;

   LldpTest::TestContext context_;
   Engine engine_;
   LldpTest::Endpoints endpoints_{engine_};
   std::vector<Engine::Port> ports_;
   std::vector<Wirekit::Pam::Ptr> pams_;
   std::string frame_;
   std::mt19937 random_{1};
   uint32_t neighbours_;
   bool answered_;
   double octetsPerNeighbour_ = 0;
};

void receiveRefreshes(benchmark::State& state, bool answered) {
   static std::unique_ptr<Crowd> crowd;  // kept between the runs of one set of arguments
   auto neighbours = static_cast<uint32_t>(state.range(0));
   auto ports = static_cast<size_t>(state.range(1));
   if (!crowd || !crowd->isOf(neighbours, ports, answered)) {
      crowd.reset();
      crowd = std::make_unique<Crowd>(neighbours, ports, answered);
   }
   for (auto _ : state) crowd->receiveAny();
   state.counters["octetsPerNeighbour"] = crowd->octetsPerNeighbour();
   if (crowd->known() != neighbours) state.SkipWithError("neighbours lost");
   if (answered && crowd->phones() != neighbours) state.SkipWithError("telephones lost");
}

// Arguments: neighbours, ports. To be compared along the first.
void engineFrame(benchmark::State& state) {
   receiveRefreshes(state, false);
}
BENCHMARK(engineFrame)->ArgsProduct({{10, 1000, 100000}, {1, 48, 512}});

// The same of telephones, with the machines that answer them.
void endpointFrame(benchmark::State& state) {
   receiveRefreshes(state, true);
}
BENCHMARK(endpointFrame)->ArgsProduct({{10, 1000, 100000}, {512}});

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
