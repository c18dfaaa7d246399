#include <algorithm>

#include "Lldp/LldpProtocol/RxLldpdu.h"
#include "Lldp/LldpProtocolSm/Frame.h"
#include "Lldp/LldpProtocolSm/LldpPamSm.h"
#include "Lldp/LldpProtocolSm/Root.h"
#include "Lldp/LogEvents.h"
#include "Rex/System.h"
#include "Rex/Trace.h"
#include "RingLog/RingLog.h"

namespace Lldp::Agent::Protocol {
namespace {

const Rex::TraceHandle trace("LldpAgent", false);

// An Ethernet header with an 802.1Q tag in line.
struct [[gnu::packed]] TaggedHdr {
   uint8_t addrs[2 * Wirekit::EthAddr::size];
   uint16_t tpid, tci, type;  // network order
};
static_assert(sizeof(TaggedHdr) == sizeof(Wirekit::EthHdr) + Wirekit::VlanTag::wireSize);

// Takes the tag that stands in line off the packet and returns the type behind it. A frame that
// ends in its tag has none.
uint16_t takeInlineTag(Wirekit::Pkt& pkt) {
   if (pkt.bytes() < sizeof(TaggedHdr)) return 0;
   TaggedHdr header;
   std::memcpy(&header, pkt.head(), sizeof header);
   TRACE(trace, 6,
         "Received 802.1Q-tagged frame with VLAN ID " << (ntohs(header.tci) & Wirekit::vlanIdMask));
   pkt.delSharedHeadData(Wirekit::VlanTag::wireSize);
   return ntohs(header.type);
}

void takeSeparateTag(Wirekit::Pkt& pkt) {
   const Wirekit::VlanTag& tag = *pkt.separateVlanTag();
   TRACE(trace, 6,
         "Received 802.1Q-tagged frame (Tpid: 0x" << Rex::Hex{tag.tpid} << ") with VLAN ID "
                                                  << tag.vlanId());
   pkt.delSeparateVlanTag();
}

}  // namespace

void LldpPamSm::handleArrival(std::span<const uint8_t> frame) {
   if (frame.size() <= sizeof(Wirekit::EthHdr)) return;
   auto lldpdu = frame.subspan(sizeof(Wirekit::EthHdr));
   expectLldpdu({reinterpret_cast<const char*>(lldpdu.data()), lldpdu.size()});
}

// One frame for each run: the packet access object asks again as long as frames wait, so that the
// other ports have their turn in between.
void LldpPamSm::handleReadableCount() {
   TRACE(trace, 8, "LldpPamSm::handleReadableCount()");
   REX_ASSERT(initialized());
   auto pkt = pam()->rxPkt();
   if (!pkt) {
      TRACE(trace, 0, "Error receiving frame");
      return;
   }
   TRACE(trace, 4,
         "Received frame on interface " << intfId() << " (length=" << pkt->bytes() << ")");
   if (!mayReceive(portConfig()->adminStatus())) {
      TRACE(trace, 6, "LLDP Receive disabled -- discarding received LLDPDU");
      return;
   }
   REX_ASSERT(pkt->bytes() >= sizeof(Wirekit::EthHdr));  // the socket filter sees to that
   // Stays addressable when the head moves past it.
   const auto& header = *reinterpret_cast<const Wirekit::EthHdr*>(pkt->head());
   if (header.dstAddr() != lldpMulticastAddr) {
      TRACE(trace, 2, "Received frame with incorrect DMAC -- ignoring");
      return;
   }
   if (takeHeader(*pkt)) handleLldpdu(*pkt, header);
}

// Takes the Ethernet header and a tag off the packet, which then begins with the first TLV. False
// if it holds no LLDPDU. Where tagged frames are to be dropped, a tag that was delivered beside the
// frame is not looked at, so that only tags in line are seen.
bool LldpPamSm::takeHeader(Wirekit::Pkt& pkt) {
   uint16_t etherType = reinterpret_cast<const Wirekit::EthHdr*>(pkt.head())->etherType();
   if (!root()->config()->rxTaggedPacketsDrop()) {
      if (pkt.separateVlanTag()) {
         takeSeparateTag(pkt);
      } else if (etherType == Wirekit::dot1QTpid) {
         etherType = takeInlineTag(pkt);
      }
   }
   if (etherType != lldpEtherType) {
      TRACE(trace, 2, "Received frame with incorrect EtherType -- ignoring");
      return false;
   }
   pkt.delSharedHeadData(sizeof(Wirekit::EthHdr));
   return true;
}

void LldpPamSm::handleLldpdu(Wirekit::Pkt& pkt, const Wirekit::EthHdr& header) {
   ++rxLldpdus_;
   if (overRateLimit()) return;
   char* begin = pkt.head();
   auto remoteSystem = processRxLldpdu(begin, begin + pkt.bytes(), portConfig(), root()->status(),
                                       portStatus(), header.srcAddr());
   if (remoteSystem && ageClock_.timeMin() > remoteSystem->expiryTime()) {
      TRACE(trace, 8, "Setting ageClock to expire at " << remoteSystem->expiryTime());
      ageClock_.timeMinIs(remoteSystem->expiryTime());
   }
}

bool LldpPamSm::overRateLimit() {
   uint64_t rxRateLimitCount = portConfig()->rxRateLimitCount();
   if (!portConfig()->rxRateLimitEnabled() || rxLldpdus() <= rxRateLimitCount) return false;
   if (rxLldpdus() == rxRateLimitCount + 1) {
      Rex::log(LLDP_RX_RATELIMIT, intfId(), rxRateLimitCount, portConfig()->rxRateLimitInterval());
   }
   ++rxLldpdusRateLimited_;
   return true;
}

// The periods follow one another from the machine's start, whether or not the limit is in force.
void LldpPamSm::handleRxRateLimitClock() {
   REX_ASSERT(initialized());
   TRACE(trace, 8, "LldpPamSm::handleRxRateLimitClock()");
   rxLldpdus_ = 0;
   rxRateLimitClock_.timeMinIs(Rex::System::currentTime() + portConfig()->rxRateLimitInterval());
}

// A neighbour that was refreshed since the clock was set is not due yet: the clock moves on to the
// earliest expiry of those that stay.
void LldpPamSm::handleAgeClock() {
   TRACE(trace, 8, "LldpPamSm::handleAgeClock()");
   REX_ASSERT(initialized());
   double now = Rex::System::currentTime();
   double next = Rex::never;
   for (auto [index, remoteSystem] : portStatus()->remoteSystem()) {
      double expiryTime = remoteSystem->expiryTime();
      if (now >= expiryTime) {
         doAgeOut(remoteSystem->msap(), index);
      } else {
         next = std::min(next, expiryTime);
      }
   }
   TRACE(trace, 8, "Setting ageClock to expire at " << next);
   ageClock_.timeMinIs(next);
}

void LldpPamSm::doAgeOut(const Lldp::RemoteSystem::Msap& msap, int index) {
   TRACE(trace, 4, "Aging RemoteSystem for " << msap);
   portStatus()->remoteSystemByMsapDel(msap);
   portStatus()->remoteSystemDel(index);
   portStatus()->rxAgeoutsTotalInc(1);
   root()->status()->remTablesAgeoutsInc(1);
   root()->status()->remTablesDeletesInc(1);
   // Handed over as they are: a text would be made harmless a second time.
   Rex::log(LLDP_NEIGHBOR_TIMEOUT, msap.chassisIdentifier, msap.portIdentifier, intfId());
   root()->status()->remTablesLastChangeTimeIs(Rex::System::currentTime());
}

// Link status 1 alone: a status that says nothing keeps the neighbours, though it ends sending.
void LldpPamSm::handleLinkStatusRx() {
   TRACE(trace, 8, "LldpPamSm::handleLinkStatusRx()");
   if (!initialized()) return;
   if (ethPhyIntfStatus()->linkStatus() != Interface::linkDown) return;
   TRACE(trace, 4, "Link down: deleting all RemoteSystems on " << intfId());
   doDeleteAllRemoteSystems();
}

// The age clock stays as it is: when it runs, it finds what stands then.
void LldpPamSm::doDeleteAllRemoteSystems() {
   REX_ASSERT(initialized());
   for (auto [index, remoteSystem] : portStatus()->remoteSystem()) {
      Lldp::RemoteSystem::Msap msap = remoteSystem->msap();
      DualLog(trace, 4, "Deleting RemoteSystem for " << msap);
      portStatus()->remoteSystemByMsapDel(msap);
      portStatus()->remoteSystemDel(index);
      root()->status()->remTablesDeletesInc(1);
      root()->status()->remTablesLastChangeTimeIs(Rex::System::currentTime());
   }
}

void LldpPamSm::doClose() {
   REX_ASSERT(initialized());
   doDeleteAllRemoteSystems();
}

}  // namespace Lldp::Agent::Protocol
