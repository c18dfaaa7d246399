// The engine with many neighbours: one received frame, from its arrival at the port to the end of
// all that it sets off; and what wakes an agent that has nothing to do.
#include <benchmark/benchmark.h>
#include <malloc.h>

#include <cstring>
#include <memory>
#include <random>
#include <vector>

#include "Rex/Pool.h"
#include "bench/NumberedFrame.h"
#include "support/Endpoints.h"
#include "support/FrameBuilder.h"
#include "support/TestContext.h"

namespace {

using LldpTest::Engine;

// Who the neighbours are, and whether the machines run that answer telephones.
struct Cast {
   uint32_t neighbours;
   size_t ports;
   uint32_t perPhone = 0;  // one of so many is a telephone; 0 for none
   bool answered = false;
   bool news = false;  // each frame of a telephone says something new
   bool keepsIntfDown = true;
   bool operator==(const Cast&) const = default;
};

// An engine whose neighbours are spread over its ports in turn. Their table is filled in one random
// order and read in another, so that neither memory nor caches see a pattern. Telephones ask for
// power and a policy, each by an address of its own.
class Crowd {
 public:
   explicit Crowd(const Cast& cast) : cast_(cast) {
      context_.context().logSink = nullptr;
      context_.context().toggles["LldpKeepNbrClassificationIntfDown"] = cast.keepsIntfDown;
      engine_.open();
      if (cast.answered) endpoints_.start();
      for (size_t i = 0; i < cast.ports; ++i) {
         auto port = engine_.port("Ethernet" + std::to_string(i + 1));
         port.segment->tap = nullptr;
         port.portConfig->maxRemoteSystemsIs(cast.neighbours);
         port.portConfig->rxRateLimitEnabledIs(false);
         port.localPort->initilizeLocalPortPoeInfo();
         ports_.push_back(port);
      }
      context_.settle();
      for (const auto& port : ports_) pams_.push_back(engine_.pam(port.intfId));
      std::vector<uint32_t> order(cast.neighbours);
      for (uint32_t n = 0; n < cast.neighbours; ++n) order[n] = n;
      std::shuffle(order.begin(), order.end(), random_);
      size_t before = memory();
      for (uint32_t n : order) receive(n);
      octetsPerNeighbour_ = double(memory() - before) / cast.neighbours;
      // Afterwards all are known for some time, as they are to an agent that has run for minutes.
      constexpr int rounds = 10;
      for (int round = 0; round < rounds; ++round) {
         for (uint32_t n : order) receive(n);
      }
   }

   const Cast& cast() const { return cast_; }
   double octetsPerNeighbour() const { return octetsPerNeighbour_; }
   // Whether all are known, and the telephones as such where that is of interest.
   bool whole() const {
      uint32_t phones = 0;
      for (uint32_t n = 0; n < cast_.neighbours; ++n) phones += isPhone(n);
      return known() == cast_.neighbours &&
             endpoints_.status->phones() == (cast_.answered ? phones : 0);
   }
   void receiveAny() { receive(static_cast<uint32_t>(random_() % cast_.neighbours)); }

 private:
   bool isPhone(uint32_t n) const { return cast_.perPhone && n % cast_.perPhone == 0; }
   size_t known() const {
      size_t all = 0;
      for (const auto& port : ports_) all += port.portStatus->remoteSystems();
      return all;
   }
   static std::string telephone(bool named) {
      return LldpTest::mandatory(1, 65535) + (named ? LldpTest::tlv(5, "a") : "") +
             LldpTest::systemCapabilities(0x24, 0x24) +
             LldpTest::organization(LldpTest::dot3, 2, LldpTest::octets("0802056200820082")) +
             LldpTest::organization(LldpTest::tia, 1, LldpTest::octets("003303")) +
             LldpTest::organization(LldpTest::tia, 2, LldpTest::octets("07400000")) +
             LldpTest::endOfLldpdu();
   }
   // The heap and the pool, which takes its memory elsewhere.
   static size_t memory() { return mallinfo2().uordblks + Rex::Pool::inUse(); }

   // The frame of neighbour `n`.
   void receive(uint32_t n) {
      std::string& frame = isPhone(n) ? phoneFrame_ : frame_;
      Bench::chassisNumberIs(frame, n);
      if (cast_.perPhone) Bench::sourceNumberIs(frame, n);
      if (cast_.news) frame[nameAt] = static_cast<char>('a' + random_() % 26);
      context_.timeIs(context_.now() + 10e-6);
      pams_[n % pams_.size()]->rxFrameIs(LldpTest::octetsOf(frame), {});
      context_.settle();
   }

   // A telephone's name, behind the TLVs for chassis, port and time to live.
   static const inline size_t nameAt = 14 + LldpTest::mandatory(1, 65535).size() + 2;

   LldpTest::TestContext context_;
   Engine engine_;
   LldpTest::Endpoints endpoints_{engine_};
   std::vector<Engine::Port> ports_;
   std::vector<Wirekit::Pam::Ptr> pams_;
   std::string frame_ = LldpTest::ethFrame(LldpTest::typicalLldpdu());
   const Cast cast_;
   std::string phoneFrame_ = LldpTest::ethFrame(telephone(cast_.news));
   std::mt19937 random_{1};
   double octetsPerNeighbour_ = 0;
};

void receiveRefreshes(benchmark::State& state, const Cast& cast) {
   static std::unique_ptr<Crowd> crowd;  // kept between the runs of one set of arguments
   if (!crowd || crowd->cast() != cast) {
      crowd.reset();
      crowd = std::make_unique<Crowd>(cast);
   }
   for (auto _ : state) crowd->receiveAny();
   state.counters["octetsPerNeighbour"] = crowd->octetsPerNeighbour();
   if (!crowd->whole()) state.SkipWithError("neighbours or telephones lost");
}

// Arguments: neighbours, ports. To be compared along the first.
void engineFrame(benchmark::State& state) {
   receiveRefreshes(state,
                    {static_cast<uint32_t>(state.range(0)), static_cast<size_t>(state.range(1))});
}
BENCHMARK(engineFrame)->ArgsProduct({{10, 1000, 100000}, {1, 48, 512}});

// The same with telephones: one among so many neighbours, as the third argument tells, each of them
// at the worst. The fourth: whether the machines run that answer them.
void endpointFrame(benchmark::State& state) {
   receiveRefreshes(state,
                    {static_cast<uint32_t>(state.range(0)), static_cast<size_t>(state.range(1)),
                     static_cast<uint32_t>(state.range(2)), state.range(3) != 0});
}
BENCHMARK(endpointFrame)->ArgsProduct({{10, 100000}, {512}, {100, 1}, {0, 1}});

// The same where each frame says something new, and all are telephones. The third argument: whether
// the feature toggle keeps what was heard on a port without link.
void endpointNews(benchmark::State& state) {
   receiveRefreshes(
       state, {static_cast<uint32_t>(state.range(0)), static_cast<size_t>(state.range(1)), 1, true,
               true, state.range(2) != 0});
}
BENCHMARK(endpointNews)->ArgsProduct({{10, 1000, 100000}, {512}, {1, 0}});

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
