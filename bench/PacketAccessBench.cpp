// Packet access to Linux devices: opening all ports of a large switch, and what one frame costs on
// its way from the wire to the port's reader. Skipped without the right to make a network
// namespace.
#include <benchmark/benchmark.h>
#include <sys/epoll.h>

#include <vector>

#include "Interface/LinuxPamMaker.h"
#include "Rex/Clock.h"
#include "Rex/Loop.h"
#include "Rex/StateMachine.h"
#include "bench/Wires.h"

namespace {

using Bench::device;
using Interface::LinuxPamMaker;
using Interface::PamConfig;

constexpr int ports = 500;

struct World {
   World() {
      config.listenAddr = {0x01, 0x80, 0xC2, 0, 0, 0x0E};
      config.separateDot1QHdr = true;
      config.maxRxPktData = 10236;
      config.sockPrio = 7;
      config.filter = {{0x28, 0, 0, 12}, {0x15, 0, 1, 0x88CC}, {6, 0, 0, 0xFFFF}, {6, 0, 0, 0}};
   }
   Rex::Ptr<Wirekit::Pam> make(int i) {
      Wirekit::IntfId intfId(device(i));
      return maker.make({intfId, device(i), Bench::deviceIndex(i)}, config).pam;
   }
   Rex::Context context{Rex::make<Rex::Clock>(std::make_shared<Rex::ManualTime>())};
   Rex::ContextScope scope{context};
   Rex::Loop loop;
   PamConfig config;
   LinuxPamMaker maker{loop};
};

class TakerSm : public Rex::StateMachine {
 public:
   TakerSm(Rex::Ptr<Wirekit::Pam> pam, Rex::Loop& loop) : pam_(pam), loop_(loop) {
      on(pam_, Wirekit::Pam::readableCountAttr, &TakerSm::handleReadableCount);
   }
   size_t wanted = 0;

 private:
   void handleReadableCount() {
      if (pam_->rxPkt() && --wanted == 0) loop_.stop();
   }
   Rex::Ptr<Wirekit::Pam> pam_;
   Rex::Loop& loop_;
};

void openAndCloseAllPorts(benchmark::State& state) {
   if (!Bench::makeDevices(ports)) return state.SkipWithError("no network namespace");
   World world;
   for (auto _ : state) {
      std::vector<Rex::Ptr<Wirekit::Pam>> pams;
      for (int i = 0; i < ports; ++i) pams.push_back(world.make(i));
      for (auto& pam : pams) pam->close();
   }
}
BENCHMARK(openAndCloseAllPorts)->Unit(benchmark::kMillisecond);

// Bursts of the given size, sent by one port and read by another.
void takeBurst(benchmark::State& state) {
   if (!Bench::makeDevices(ports)) return state.SkipWithError("no network namespace");
   World world;
   auto from = world.make(0), to = world.make(1);
   auto taker = Rex::make<TakerSm>(to, world.loop);
   std::vector<uint8_t> frame(1514);
   frame[12] = 0x88;
   frame[13] = 0xCC;
   for (auto _ : state) {
      state.PauseTiming();
      for (int i = 0; i < state.range(0); ++i) {
         from->txPktIs(Wirekit::globalPktManager().newPkt(frame));
      }
      taker->wanted = static_cast<size_t>(state.range(0));
      state.ResumeTiming();
      world.loop.run(world.context);
   }
   state.SetItemsProcessed(state.iterations() * state.range(0));
   state.counters["kernelDrops"] = static_cast<double>(world.maker.kernelDrops());
}
BENCHMARK(takeBurst)->Arg(1)->Arg(100)->Arg(10000);

}  // namespace
