// LLDPDUs out of arbitrary octets, against the invariants of the tables that they write. An input
// is a sequence of frames, each behind its length in two octets; one that is shorter is cut.
#include <algorithm>
#include <memory>

#include "../tests/support/CodecPort.h"
#include "Rex/Context.h"
#include "Rex/Trace.h"

namespace {

constexpr uint32_t maxRemoteSystems = 8;

struct Totals {
   explicit Totals(const LldpTest::CodecPort& port)
       : frames(port.portStatus->rxFramesTotal()),
         discarded(port.portStatus->rxFramesDiscardedTotal()),
         errors(port.portStatus->rxFramesErrors()),
         tlvsDiscarded(port.portStatus->rxTLVsDiscardedTotal()),
         tlvsUnrecognized(port.portStatus->rxTLVsUnrecognizedTotal()),
         inserts(port.status->remTablesInserts()),
         deletes(port.status->remTablesDeletes()) {}
   uint32_t frames, discarded, errors, tlvsDiscarded, tlvsUnrecognized, inserts, deletes;
};

void checkTables(const LldpTest::CodecPort& port) {
   const auto& status = *port.portStatus;
   REX_ASSERT(status.remoteSystems() == status.remoteSystemByMsaps());
   REX_ASSERT(status.remoteSystems() <= maxRemoteSystems);
   REX_ASSERT(port.status->remTablesInserts() - port.status->remTablesDeletes() ==
              status.remoteSystems());
   for (auto [index, neighbour] : status.remoteSystem()) {
      REX_ASSERT(neighbour->index() == index && index > 0);
      REX_ASSERT(status.remoteSystemByMsap(neighbour->msap()) == neighbour);
      REX_ASSERT(neighbour->ttl() > 0);
      REX_ASSERT(neighbour->expiryTime() == neighbour->lastRefreshTime() + neighbour->ttl());
      REX_ASSERT(neighbour->creationTime() <= neighbour->lastChangeTime());
      REX_ASSERT(neighbour->lastChangeTime() <= neighbour->lastRefreshTime());
   }
}

void checkStep(const Totals& was, const Totals& is, bool neighbour, size_t octets) {
   REX_ASSERT(is.frames == was.frames + 1);
   REX_ASSERT(is.discarded - was.discarded <= 1 && is.errors - was.errors <= 1);
   REX_ASSERT(is.inserts - was.inserts <= 1 && is.deletes - was.deletes <= 1);
   // No TLV is counted twice, and each has a header.
   uint32_t tlvs =
       is.tlvsDiscarded - was.tlvsDiscarded + is.tlvsUnrecognized - was.tlvsUnrecognized;
   REX_ASSERT(tlvs <= octets / 2 + 1);
   REX_ASSERT(!neighbour || is.discarded == was.discarded);
   REX_ASSERT(is.inserts == was.inserts || neighbour);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
   auto time = std::make_shared<Rex::ManualTime>();
   Rex::Context context(Rex::make<Rex::Clock>(time));
   Rex::ContextScope scope(context);
   // Traced as well: the printed forms of foreign octets are code that a frame reaches.
   context.traceSink = [](const Rex::TraceRecord&) {};
   if (size && data[0] & 1) context.traceMaskIs("LldpProtocol", 0x3FF);
   LldpTest::CodecPort port;
   port.portConfig->maxRemoteSystemsIs(maxRemoteSystems);
   std::string last;
   while (size >= 2) {
      size_t length = std::min<size_t>(data[0] << 8 | data[1], size - 2);
      last.assign(reinterpret_cast<const char*>(data) + 2, length);
      data += 2 + length;
      size -= 2 + length;
      time->nowIs(time->now() + 1);
      Totals was(port);
      auto neighbour = port.receive(last);
      checkStep(was, Totals(port), bool(neighbour), length);
      checkTables(port);
      if (!neighbour) continue;
      // The same once more changes nothing.
      double changed = neighbour->lastChangeTime();
      time->nowIs(time->now() + 1);
      REX_ASSERT(port.receive(last) == neighbour);
      REX_ASSERT(neighbour->lastChangeTime() == changed);
   }
   return 0;
}
