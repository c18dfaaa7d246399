// The input machines of a switch with 48 ports and many VLAN interfaces, each with an address.
#include <benchmark/benchmark.h>

#include <string>

#include "Rex/Dispatcher.h"
#include "support/InputFixture.h"

namespace {

constexpr int ports = 48;
constexpr uint32_t firstAddr = 0x0A000001;  // 10.0.0.1
constexpr uint8_t maskLength = 24;

Wirekit::IntfId vlan(int number) {
   return Wirekit::IntfId("Vlan" + std::to_string(number));
}
Wirekit::IpAddrWithMask addr(int number) {
   return {Wirekit::IpAddr(firstAddr + 256 * static_cast<uint32_t>(number)), maskLength};
}

struct Switch : LldpTest::InputFixture {
   Ip::Status::Ptr ip = Rex::make<Ip::Status>();

   Switch() {
      context.context().logSink = nullptr;
      cliConfig->mgmtAddrTxOptionIs({Lldp::MgmtAddrTxMode::mgmtAddrTxModeAll, Rex::String()});
      root->inputSmIs(phyConfigDir, bridging, hwCapabilities, ip, Rex::make<Ip6::Status>(), routing,
                      sysDescr, Rex::make<Rex::Dir>(), netStatus, cliConfig, intfDir, root);
      root->activeEthIntfStatusDirSmIs(Rex::make<Interface::EthLagIntfStatusDir>(), phyDir,
                                       hwCapabilities, root);
      for (int i = 1; i <= ports; ++i) intf(("Ethernet" + std::to_string(i)).c_str());
   }

   // As the feeder does it: the interface's row, then its addresses in one reaction.
   void vlanIs(int number) {
      auto status = Rex::make<Interface::IntfStatus>(vlan(number));
      status->ifIndexIs(number);
      intfDir->intfStatusIs(status);
      Rex::Dispatcher::run([&] {
         auto row = ip->ipIntfStatusIs(vlan(number));
         row->l3StatusIs(Rex::make<L3::Intf::Status>());
         row->l3Status()->vrfIs(L3::VrfName(Rex::String("default")));
         row->activeAddrWithMaskIs(addr(number));
      });
   }
   bool tells(int addresses) const {
      return localSystem->managementAddressPrio().size() == static_cast<size_t>(addresses);
   }
};

// Argument: VLAN interfaces, which come one after the other.
void addressesComeUp(benchmark::State& state) {
   auto vlans = static_cast<int>(state.range(0));
   for (auto _ : state) {
      Switch made;
      for (int i = 1; i <= vlans; ++i) made.vlanIs(i);
      if (!made.tells(vlans)) state.SkipWithError("addresses are missing");
   }
}
BENCHMARK(addressesComeUp)->Arg(1000)->Arg(4000)->Unit(benchmark::kMillisecond);

// One address changes, among as many. To be compared along the argument.
void oneAddressChanges(benchmark::State& state) {
   auto vlans = static_cast<int>(state.range(0));
   Switch made;
   for (int i = 1; i <= vlans; ++i) made.vlanIs(i);
   auto row = made.ip->ipIntfStatus(vlan(vlans / 2));
   const Wirekit::IpAddrWithMask addrs[] = {addr(vlans + 1), addr(vlans / 2)};
   size_t turn = 0;
   for (auto _ : state) row->activeAddrWithMaskIs(addrs[turn++ % 2]);
   if (!made.tells(vlans)) state.SkipWithError("addresses are missing");
}
BENCHMARK(oneAddressChanges)->Arg(10)->Arg(1000)->Arg(4000);

}  // namespace
