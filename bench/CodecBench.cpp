// The codec alone: one frame in, or one frame out.
#include <benchmark/benchmark.h>

#include "Rex/Pool.h"
#include "support/CodecSender.h"
#include "support/OrganisationTlvs.h"
#include "support/TestContext.h"

namespace {

using namespace LldpTest;

// A frame that is received over and over; processRxLldpdu does not write to it.
Lldp::RemoteSystem::PtrConst receive(CodecPort& port, std::string& lldpdu) {
   return Lldp::Agent::processRxLldpdu(lldpdu.data(), lldpdu.data() + lldpdu.size(),
                                       port.portConfig, port.status, port.portStatus, port.srcAddr);
}

void refresh(benchmark::State& state, std::string lldpdu) {
   TestContext context;
   CodecPort port;
   receive(port, lldpdu);
   for (auto _ : state) benchmark::DoNotOptimize(receive(port, lldpdu));
   state.counters["octets"] = static_cast<double>(lldpdu.size());
}
void refreshUnchanged(benchmark::State& state) {
   refresh(state, typicalLldpdu());
}
void refreshEveryTlv(benchmark::State& state) {
   refresh(state, everyTlvLldpdu());
}
BENCHMARK(refreshUnchanged);
BENCHMARK(refreshEveryTlv);

void oneChangedAttribute(benchmark::State& state) {
   TestContext context;
   CodecPort port;
   std::string lldpdus[] = {typicalLldpdu(1, "switch-a.example.net"),
                            typicalLldpdu(1, "switch-b.example.net")};
   size_t turn = 0;
   for (auto _ : state) benchmark::DoNotOptimize(receive(port, lldpdus[++turn % 2]));
}
BENCHMARK(oneChangedAttribute);

// One new neighbour and its shutdown frame.
void newNeighbourAndShutdown(benchmark::State& state) {
   TestContext context;
   CodecPort port;
   std::string lldpdu = typicalLldpdu();
   std::string shutdown = mandatory(1, 0);
   for (auto _ : state) {
      benchmark::DoNotOptimize(receive(port, lldpdu));
      receive(port, shutdown);
   }
}
BENCHMARK(newNeighbourAndShutdown);

// Neighbours of a full table, each of them new; also the memory that each takes, all told.
void newNeighbours(benchmark::State& state, std::string (*lldpduOf)(uint32_t n)) {
   TestContext context;
   constexpr uint32_t neighbours = 256;
   std::vector<std::string> lldpdus;
   for (uint32_t n = 0; n < neighbours; ++n) lldpdus.push_back(lldpduOf(n));
   size_t memory = 0;
   for (auto _ : state) {
      state.PauseTiming();
      CodecPort port;
      size_t before = Rex::Pool::inUse();
      state.ResumeTiming();
      for (auto& lldpdu : lldpdus) benchmark::DoNotOptimize(receive(port, lldpdu));
      state.PauseTiming();
      memory = Rex::Pool::inUse() - before;
      state.ResumeTiming();
   }
   state.SetItemsProcessed(state.iterations() * neighbours);
   state.counters["octets_per_neighbour"] = static_cast<double>(memory) / neighbours;
}
void newNeighbour(benchmark::State& state) {
   newNeighbours(state, [](uint32_t n) { return typicalLldpdu(n); });
}
void newNeighbourEveryTlv(benchmark::State& state) {
   newNeighbours(state, everyTlvLldpdu);
}
BENCHMARK(newNeighbour);
BENCHMARK(newNeighbourEveryTlv);

void build(benchmark::State& state, const CodecSender& sender) {
   char buffer[1500];
   for (auto _ : state) benchmark::DoNotOptimize(sender.build(buffer, buffer + sizeof buffer));
}
void buildFrame(benchmark::State& state) {
   TestContext context;
   CodecSender sender;
   sender.sayBasics({"\x0A\x01\x01\x01"});
   sender.localSystem->sysNameIs(Lldp::BoundedString255(Rex::String("switch-a.example.net")));
   sender.localSystem->sysDescIs(Lldp::BoundedString255(Rex::String(std::string(120, 'd'))));
   sender.localPort->portDescIs(Lldp::BoundedString255(Rex::String("Uplink, row 7")));
   build(state, sender);
}
// With every TLV of the organisations that is sent.
void buildEveryTlv(benchmark::State& state) {
   TestContext context;
   CodecSender sender;
   sender.sayBasics();
   sender.sayOrganisations();
   build(state, sender);
}
BENCHMARK(buildFrame);
BENCHMARK(buildEveryTlv);

}  // namespace
