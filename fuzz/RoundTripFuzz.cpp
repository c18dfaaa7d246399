// An arbitrary local model, sent and read back: the frame is clean, and what fitted it is
// understood as it was meant.
#include <fuzzer/FuzzedDataProvider.h>

#include <memory>

#include "../tests/support/RoundTrip.h"
#include "Lldp/LldpProtocol/Compare.h"
#include "Rex/Context.h"
#include "Rex/Trace.h"

namespace {

using namespace LldpTest;

template <class Text>
Text text(FuzzedDataProvider& in, size_t most, size_t least = 0) {
   std::string octets = in.ConsumeRandomLengthString(most);
   if (octets.size() < least) octets.resize(least, 'x');
   return Text(Rex::String(octets));
}

void makeBasics(FuzzedDataProvider& in, CodecSender& sender) {
   auto& system = *sender.localSystem;
   auto& config = *sender.port.portConfig;
   using Lldp::ChassisIdSubtype, Lldp::PortIdSubtype;
   system.chassisIdentifierIs(
       {ChassisIdSubtype(in.ConsumeIntegralInRange(1, 8)), text<Lldp::ChassisId>(in, 255, 1)});
   sender.localPort->portIdentifierIs(
       {PortIdSubtype(in.ConsumeIntegralInRange(1, 8)), text<Lldp::PortId>(in, 255, 1)});
   // A time of 0 would be a shutdown.
   sender.port.config->messageTxHoldTimeIs(in.ConsumeIntegralInRange<uint16_t>(1, 0xFFFF));
   config.enabledTlvsIs({in.ConsumeIntegral<uint8_t>()});
   system.sysNameIs(text<Lldp::BoundedString255>(in, 255));
   system.sysDescIs(text<Lldp::BoundedString255>(in, 255));
   sender.localPort->portDescIs(text<Lldp::BoundedString255>(in, 255));
   auto supported = in.ConsumeIntegral<uint16_t>();
   system.sysCapSupportedIs(supported);
   system.sysCapEnabledIs(static_cast<uint16_t>(supported & in.ConsumeIntegral<uint16_t>()));
   config.mgmtAddrTxEnableIs(in.ConsumeBool());
   sender.port.config->maxTxMgmtAddrsIs(0xFFFFFFFF);
   uint32_t addresses = in.ConsumeIntegralInRange(0, 8);
   for (uint32_t rank = 0; rank < addresses; ++rank) {
      auto octets = text<Lldp::ManAddress>(in, 31, 1);
      auto address =
          CodecSender::addressOf(in.ConsumeIntegral<uint8_t>(), octets.value().stdString(),
                                 in.ConsumeIntegral<uint32_t>());
      system.managementAddressIs(address);
      system.managementAddressPrioIs({.primaryPriority = rank}, address.key);
   }
}

void makeOrganisations(FuzzedDataProvider& in, CodecSender& sender) {
   auto& port = *sender.localPort;
   auto& config = *sender.port.portConfig;
   if (in.ConsumeBool()) sender.sayOrganisations();
   config.portVlanTxEnableIs(in.ConsumeBool());
   config.dot3EnabledTlvsIs({in.ConsumeIntegral<uint8_t>() & 0x0Eu});
   config.tiaEnabledTlvsIs({in.ConsumeIntegral<uint8_t>()});
   config.poeAllocatedPowerFallbackIs(in.ConsumeBool() ? in.ConsumeIntegral<uint32_t>() : 0);
   port.portVlanIdIs(in.ConsumeIntegralInRange<uint16_t>(0, 4094));
   using namespace Environment::Power;
   port.localPortPoeInfo()->poePortStatusIs(
       {PoePortState(in.ConsumeIntegralInRange(0, 4)), in.ConsumeIntegral<uint32_t>(),
        in.ConsumeIntegral<uint8_t>(), PoePowerPair(in.ConsumeIntegralInRange(0, 2)),
        PoePriority(in.ConsumeIntegralInRange(0, 3))});
   port.linkAggregationInfoIs({in.ConsumeIntegral<uint8_t>(), in.ConsumeIntegral<uint32_t>()});
   port.maximumFrameSizeInfoIs({in.ConsumeIntegral<uint16_t>()});
   port.medCapabilitiesIs(
       {in.ConsumeIntegralInRange<uint16_t>(0, 0x3F), in.ConsumeIntegralInRange<uint8_t>(0, 5)});
   for (int n = in.ConsumeIntegralInRange(0, 8); n > 0; --n) {
      port.localNetworkPolicyTlvIs({in.ConsumeIntegral<uint8_t>(), in.ConsumeBool(),
                                    in.ConsumeBool(), in.ConsumeIntegralInRange<uint16_t>(0, 4095),
                                    in.ConsumeIntegralInRange<uint8_t>(0, 7),
                                    in.ConsumeIntegralInRange<uint8_t>(0, 63)});
   }
   for (uint32_t n = in.ConsumeIntegralInRange(0, 4); n > 0; --n) {
      sender.external(0x001B20, n, 1, in.ConsumeRandomLengthString(507));
   }
   // The peer takes a control TLV only with its sequence number in it.
   std::string control = in.ConsumeRandomLengthString(507);
   if (control.size() >= 8) sender.external(cee, 2, 1, control);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
   Rex::Context context(Rex::make<Rex::Clock>(std::make_shared<Rex::ManualTime>()));
   Rex::ContextScope scope(context);
   FuzzedDataProvider in(data, size);
   CodecSender sender;
   makeBasics(in, sender);
   makeOrganisations(in, sender);
   // Mandatory and basic TLVs take 1299 octets at most, with the end.
   auto room = in.ConsumeIntegralInRange<size_t>(1299, 1500);
   std::string lldpdu = sender.build(room);
   CodecPort peer;
   auto neighbour = peer.receive(lldpdu);
   REX_ASSERT(neighbour);
   REX_ASSERT(peer.portStatus->rxFramesErrors() == 0);
   if (sender.port.portStatus->txFramesLengthExceeded() == 0) {
      auto expected = asUnderstood(sender);
      REX_ASSERT(neighbour->msap() == expected->msap());
      REX_ASSERT(neighbour->ttl() == sender.port.config->messageTxHoldTime());
      REX_ASSERT(!Lldp::Agent::copyChanges(*neighbour, *expected));
   }
   return 0;
}
