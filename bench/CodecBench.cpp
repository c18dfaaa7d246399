// The codec alone: one frame in, or one frame out.
#include <benchmark/benchmark.h>

#include "Lldp/LldpProtocol/TxLldpdu.h"
#include "Lldp/LldpProtocolSm/Root.h"
#include "Rex/Pool.h"
#include "support/CodecPort.h"
#include "support/FrameBuilder.h"
#include "support/TestContext.h"

namespace {

using namespace LldpTest;

// A frame that is received over and over; processRxLldpdu does not write to it.
Lldp::RemoteSystem::PtrConst receive(CodecPort& port, std::string& lldpdu) {
   return Lldp::Agent::processRxLldpdu(lldpdu.data(), lldpdu.data() + lldpdu.size(),
                                       port.portConfig, port.status, port.portStatus, port.srcAddr);
}

void refreshUnchanged(benchmark::State& state) {
   TestContext context;
   CodecPort port;
   std::string lldpdu = typicalLldpdu();
   receive(port, lldpdu);
   for (auto _ : state) benchmark::DoNotOptimize(receive(port, lldpdu));
   state.counters["octets"] = static_cast<double>(lldpdu.size());
}
BENCHMARK(refreshUnchanged);

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
void newNeighbour(benchmark::State& state) {
   TestContext context;
   constexpr uint32_t neighbours = 256;
   std::vector<std::string> lldpdus;
   for (uint32_t n = 0; n < neighbours; ++n) lldpdus.push_back(typicalLldpdu(n));
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
BENCHMARK(newNeighbour);

void buildFrame(benchmark::State& state) {
   TestContext context;
   CodecPort port;
   auto localSystem = Rex::make<Lldp::LocalSystem>();
   auto mac = be16(0x0200) + be32(1);
   localSystem->chassisIdentifierIs(
       {Lldp::ChassisIdSubtype::macAddress, Lldp::ChassisId(mac.data(), mac.size())});
   localSystem->sysNameIs(Lldp::BoundedString255(Rex::String("switch-a.example.net")));
   localSystem->sysDescIs(Lldp::BoundedString255(Rex::String(std::string(120, 'd'))));
   Lldp::ManagementAddress address;
   address.key = {1, Lldp::ManAddress("\x0A\x00\x00\x01", 4)};
   localSystem->managementAddressIs(address);
   localSystem->managementAddressPrioIs({}, address.key);
   auto localPort = localSystem->localPortIs(port.intfId);
   localPort->portIdentifierIs(
       {Lldp::PortIdSubtype::interfaceName, Lldp::PortId(port.intfId.stringValue())});
   localPort->portDescIs(Lldp::BoundedString255(Rex::String("Uplink, row 7")));
   port.portConfig->enabledTlvsIs({0x0F});
   port.portConfig->mgmtAddrTxEnableIs(true);
   auto root = Rex::make<Lldp::Agent::Protocol::Root>("bench");
   root->configIs(port.config);
   root->localSystemIs(localSystem);
   char buffer[1500];
   for (auto _ : state) {
      benchmark::DoNotOptimize(Lldp::Agent::buildTxLldpdu(
          buffer, buffer + sizeof buffer, root, localPort, port.portConfig, port.portStatus));
   }
}
BENCHMARK(buildFrame);

}  // namespace
