// Frames on their way into a port: header, tags, rate limit, LLDPDU, neighbour table.
//
// The input is a list of frames. Each has three octets in front: options, and its length in 16
// bits, most significant first; what is missing at the input's end is cut off.
//
//   0x01  rxTaggedPacketsDrop         0x10  through the socket filter, as from a device
//   0x02  a tag beside the frame      0x20  to the port whose device takes tags out of frames
//   0x04  adminStatus is txOnly       0x40  100 seconds go by first
//   0x08  at most 3 frames a period   0x80  addresses and LLDP EtherType are put in front
#include <algorithm>
#include <array>
#include <cstdint>
#include <optional>

#include "support/Engine.h"
#include "support/TestContext.h"

namespace {

using LldpTest::Engine;

// Two ports that differ in what their devices do with tags.
struct World {
   LldpTest::TestContext context;
   Engine engine;
   std::array<Engine::Port, 2> ports;

   World() {
      engine.open();
      for (size_t i = 0; i < ports.size(); ++i) {
         engine.maker->untags = i;
         ports[i] = engine.port("Ethernet" + std::to_string(i + 1));
         ports[i].portConfig->maxRemoteSystemsIs(5);
         context.settle();
      }
   }

   void take(uint8_t options, std::string frame) {
      Engine::Port& port = ports[(options & 0x20) != 0];
      if (options & 0x80) frame = LldpTest::ethFrame(frame);
      if (options & 0x40) context.advance(100);
      engine.config->rxTaggedPacketsDropIs(options & 0x01);
      port.portConfig->adminStatusIs(options & 0x04 ? Lldp::AdminStatus::txOnly
                                                    : Lldp::AdminStatus::txAndRx);
      port.portConfig->rxRateLimitEnabledIs(options & 0x08);
      port.portConfig->rxRateLimitCountIs(3);
      std::optional<Wirekit::VlanTag> tag;
      if (options & 0x02) tag = {0x8100, 7};
      if (options & 0x10) {
         port.segment->frameIs(LldpTest::octetsOf(frame));
      } else if (frame.size() >= sizeof(Wirekit::EthHdr)) {  // the filter's promise
         engine.pam(port.intfId)->rxFrameIs(LldpTest::octetsOf(frame), tag);
      }
      context.settle();
      size_t neighbours = 0;
      for (auto& each : ports) neighbours += check(each);
      REX_ASSERT(engine.status->remTablesInserts() - engine.status->remTablesDeletes() ==
                 neighbours);
   }

   size_t check(Engine::Port& port) {
      const auto& status = *port.portStatus;
      auto sm = engine.sm(port.intfId);
      REX_ASSERT(status.remoteSystems() <= port.portConfig->maxRemoteSystems());
      REX_ASSERT(status.remoteSystems() == status.remoteSystemByMsaps());
      REX_ASSERT(engine.pam(port.intfId)->rxFrames() == 0);
      for (auto [index, neighbour] : status.remoteSystem()) {
         REX_ASSERT(status.remoteSystemByMsap(neighbour->msap()) == neighbour);
         REX_ASSERT(neighbour->expiryTime() > context.now());
         REX_ASSERT(sm->ageClock().timeMin() <= neighbour->expiryTime());
      }
      context.logs.clear();
      port.sent->clear();
      return status.remoteSystems();
   }

   void reset() {
      for (auto& port : ports) {
         port.ethPhyIntfStatus->linkStatusIs(Interface::linkDown);
         REX_ASSERT(port.portStatus->remoteSystems() == 0);
         port.ethPhyIntfStatus->linkStatusIs(Interface::linkUp);
      }
      context.advance(15);  // past the hold-off, into a new rate-limit period
   }
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
   static World& world = *new World;
   size_t at = 0;
   while (size - at >= 3) {
      size_t length = std::min<size_t>(data[at + 1] << 8 | data[at + 2], size - at - 3);
      world.take(data[at], std::string(reinterpret_cast<const char*>(data) + at + 3, length));
      at += 3 + length;
   }
   world.reset();
   return 0;
}
