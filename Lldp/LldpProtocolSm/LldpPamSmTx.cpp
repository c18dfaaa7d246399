#include "Lldp/LldpProtocol/TxLldpdu.h"
#include "Lldp/LldpProtocolSm/Frame.h"
#include "Lldp/LldpProtocolSm/LldpPamSm.h"
#include "Lldp/LldpProtocolSm/Root.h"
#include "Rex/System.h"
#include "Rex/Trace.h"

namespace Lldp::Agent::Protocol {
namespace {

const Rex::TraceHandle trace("LldpAgent", false);

}  // namespace

LldpPamSm::LldpPamSm(const Wirekit::IntfId& intfId, Wirekit::Pam::Ptr pam, Rex::Ptr<Root> root,
                     Rex::Ptr<Rex::Clock> txClock, Rex::Ptr<Rex::Clock> ageClock,
                     Rex::Ptr<Rex::Clock> rxRateLimitClock)
    : intfId_(intfId),
      pam_(std::move(pam)),
      root_(std::move(root)),
      txClock_(std::move(txClock)),
      ageClock_(std::move(ageClock)),
      rxRateLimitClock_(std::move(rxRateLimitClock)),
      ethPhyIntfStatus_(root_->ethPhyIntfStatusDir()->intfStatus(intfId)),
      portConfig_(root_->config()->portConfig(intfId)),
      portStatus_(root_->status()->portStatus(intfId)),
      localPort_(root_->localSystem()->localPort(intfId)),
      localSystem_(root_->localSystem()) {
   on(pam_, Wirekit::Pam::readableCountAttr, &LldpPamSm::handleReadableCount);
   on(txClock_, &LldpPamSm::handleTxClock);
   on(ageClock_, &LldpPamSm::handleAgeClock);
   on(rxRateLimitClock_, &LldpPamSm::handleRxRateLimitClock);
   on(ethPhyIntfStatus_, Interface::EthPhyIntfStatus::linkStatusAttr,
      &LldpPamSm::handleLinkStatusTx);
   on(ethPhyIntfStatus_, Interface::EthPhyIntfStatus::linkStatusAttr,
      &LldpPamSm::handleLinkStatusRx);
   on(portConfig_, PortConfig::adminStatusAttr, &LldpPamSm::handleAdminStatus);
   onLast(portStatus_, PortStatus::remoteSystemAttr, &LldpPamSm::handleRemoteSystem);

   pam_->heraldIs(handleArrival);
   handleInitialized();
}

LldpPamSm::~LldpPamSm() = default;

void LldpPamSm::handleInitialized() {
   TRACE(trace, 8, "LldpPamSm::handleInitialized()");
   REX_ASSERT(!initialized());
   REX_ASSERT(ethPhyIntfStatus());
   REX_ASSERT(portConfig());
   REX_ASSERT(portStatus());
   REX_ASSERT(localSystem());
   REX_ASSERT(localPort());
   initialized_ = true;
   txClock_.timeMinIs(Rex::never);
   handleTxFsmEvent(TxFsmEvent::start);
   ageClock_.timeMinIs(0.0);
   rxRateLimitClock_.timeMinIs(Rex::System::currentTime() + portConfig()->rxRateLimitInterval());
}

void LldpPamSm::handleTxFsmEvent(TxFsmEvent event) {
   const TxFsmCell& cell = txFsmCell(txFsmState(), event);
   switch (cell.kind) {
      case TxFsmCell::Kind::ignored:
         return;
      case TxFsmCell::Kind::impossible:
         // Of the states, the last one that the clock could have been running in.
         REX_ASSERT(txFsmState() == txFsmReinitializing());
         return;
      case TxFsmCell::Kind::transition:
         if (cell.words) TRACE(trace, 6, cell.words);
         txFsmStateIs(cell.next);
         return;
   }
}

void LldpPamSm::txFsmStateIs(TxFsmState state) {
   if (txFsmState_ == state) return;
   txFsmState_ = state;
   handleTxFsmState();
}

void LldpPamSm::handleTxFsmState() {
   REX_ASSERT(initialized());
   TRACE(trace, 8, "TX FSM transition " << lastTxFsmState() << " -> " << txFsmState());
   TxFsmState previous = lastTxFsmState();
   lastTxFsmStateIs(txFsmState());
   double now = Rex::System::currentTime();
   const auto& config = root()->config();
   switch (txFsmState()) {
      case TxFsmState::txFsmDisabled:
         TRACE(trace, 6, "Entering disabled state: checking if port is enabled");
         doCheckPortEnabled();
         return;
      case TxFsmState::txFsmTxWait:
         if (previous == TxFsmState::txFsmTxDelay) {
            TRACE(trace, 6, "Entering txWait state: no action");
            return;
         }
         TRACE(trace, 6, "Entering txWait state: starting txDelayWhile timer");
         txClockIs(double(config->txDelay()) + now, now);
         return;
      case TxFsmState::txFsmTxDelay:
         TRACE(trace, 6, "Entering txDelay state: tx LLDPDU and starting txDelayWhile timer");
         doSendLldpdu();
         txClockIs(double(config->txDelay()) + now, now);
         return;
      case TxFsmState::txFsmIdle:
         TRACE(trace, 6, "Entering idle state: starting txTTR timer");
         REX_ASSERT(config->messageTxInterval() >= config->txDelay());
         txClockIs((double(config->messageTxInterval()) + now) - double(config->txDelay()), now);
         return;
      default:
         REX_ASSERT(txFsmState() == txFsmReinitializing());
         TRACE(trace, 6, "Entering reinitializing state: starting txShutdownWhile timer");
         txClockIs(double(config->reinitDelay()) + now, now);
   }
}

void LldpPamSm::txClockIs(double time, double now) {
   txClock_.timeMinIs(time);
   TRACE(trace, 8, "Time is " << now << "; txClock set to expire at " << txClock_.timeMin());
}

void LldpPamSm::handleTxClock() {
   TRACE(trace, 8, "LldpPamSm::handleTxClock()");
   REX_ASSERT(initialized());
   handleTxFsmEvent(TxFsmEvent::clockExpired);
}

void LldpPamSm::doProcessSomethingChangedLocal() {
   handleTxFsmEvent(TxFsmEvent::localChange);
}

void LldpPamSm::doCheckPortEnabled() {
   REX_ASSERT(txFsmState() == txFsmDisabled());
   if (mayTransmit(portConfig()->adminStatus()) &&
       ethPhyIntfStatus()->linkStatus() == Interface::linkUp) {
      handleTxFsmEvent(TxFsmEvent::portEnabled);
   } else {
      TRACE(trace, 6, "Port not enabled: no action");
   }
}

// The hold-off is served in full: a port that is enabled again meanwhile waits for its end.
void LldpPamSm::handleLinkStatusTx() {
   TRACE(trace, 8, "LldpPamSm::handleLinkStatusTx()");
   if (!initialized()) return;
   if (txFsmState() == TxFsmState::txFsmDisabled) {
      doCheckPortEnabled();
   } else if (ethPhyIntfStatus()->linkStatus() != Interface::linkUp) {
      handleTxFsmEvent(TxFsmEvent::linkDown);
   }
}

void LldpPamSm::handleAdminStatus() {
   TRACE(trace, 8, "LldpPamSm::handleAdminStatus()");
   if (!initialized()) return;
   if (txFsmState() == TxFsmState::txFsmDisabled) {
      doCheckPortEnabled();
   } else if (!mayTransmit(portConfig()->adminStatus())) {
      handleTxFsmEvent(TxFsmEvent::adminDown);
   }
}

// A new neighbour hears from this port early; one that left is told nothing. The frame answers what
// the neighbour asks for in its first one: the machines that see to that come before.
void LldpPamSm::handleRemoteSystem(int key) {
   TRACE(trace, 8, "LldpPamSm::handleRemoteSystem( " << key << " )");
   if (portStatus()->remoteSystemHas(key)) doProcessSomethingChangedLocal();
}

// A frame that could not be built, or that the device does not take, is not tried again: the next
// one leaves at the next interval.
void LldpPamSm::doSendLldpdu() {
   if (auto pkt = doBuildLldpdu()) pam()->txPktIs(pkt);
}

Wirekit::Pkt::Ptr LldpPamSm::doBuildLldpdu() {
   auto pkt = Wirekit::globalPktManager().newPkt();
   if (!pkt) {
      TRACE(trace, 0, "Packet allocation failed");
      portStatus()->txFramesNoMemErrorsInc(1);
      return nullptr;
   }
   char* end = pkt->head();
   REX_ASSERT(pkt->maxSharedData() >= (root()->config()->maxTxFrameSize() - 4));
   char* begin = pkt->newSharedHeadData(maxLldpduSize);
   char* usedEnd = buildTxLldpdu(begin, end, root(), localPort(), portConfig(), portStatus());
   REX_ASSERT(usedEnd);
   pkt->delSharedTailData(static_cast<size_t>(end - usedEnd));

   Wirekit::EthHdr header;
   header.dstAddrIs(lldpMulticastAddr);
   header.srcAddrIs(ethPhyIntfStatus()->ethAddr());
   header.etherTypeIs(lldpEtherType);
   std::memcpy(pkt->newSharedHeadData(sizeof header), &header, sizeof header);
   return pkt;
}

}  // namespace Lldp::Agent::Protocol
