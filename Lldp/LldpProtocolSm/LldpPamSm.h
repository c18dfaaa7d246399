// The machine of one LLDP port: sends its LLDPDUs (LldpPamSmTx.cpp), takes those of its neighbours,
// limits their rate and ages them out (LldpPamSmRx.cpp). One exists for each port that has packet
// access, a configuration, a status, a physical interface status and a local port.
#pragma once

#include <cstdint>
#include <span>

#include "Interface/EthPhyIntfStatus.h"
#include "Lldp/LldpProtocolSm/TxFsm.h"
#include "Rex/StateMachine.h"
#include "Rex/Timer.h"
#include "Wirekit/Pam.h"
#include "model/Config.h"
#include "model/LocalSystem.h"
#include "model/Status.h"

namespace Lldp::Agent::Protocol {

class Root;

class LldpPamSm : public Rex::StateMachine {
 public:
   // The machine runs when the constructor returns. The port's rows stand in `root`.
   LldpPamSm(const Wirekit::IntfId& intfId, Wirekit::Pam::Ptr pam, Rex::Ptr<Root> root,
             Rex::Ptr<Rex::Clock> txClock, Rex::Ptr<Rex::Clock> ageClock,
             Rex::Ptr<Rex::Clock> rxRateLimitClock);
   ~LldpPamSm() override;

   const Wirekit::IntfId& intfId() const { return intfId_; }
   const Wirekit::Pam::Ptr& pam() const { return pam_; }
   const Rex::Ptr<Root>& root() const { return root_; }
   const Rex::Timer& txClock() const { return txClock_; }
   const Rex::Timer& ageClock() const { return ageClock_; }
   const Rex::Timer& rxRateLimitClock() const { return rxRateLimitClock_; }
   const Interface::EthPhyIntfStatus::PtrConst& ethPhyIntfStatus() const {
      return ethPhyIntfStatus_;
   }
   const Lldp::PortConfig::PtrConst& portConfig() const { return portConfig_; }
   const Lldp::PortStatus::Ptr& portStatus() const { return portStatus_; }
   const Lldp::LocalPort::PtrConst& localPort() const { return localPort_; }
   const Lldp::LocalSystem::PtrConst& localSystem() const { return localSystem_; }
   TxFsmState txFsmState() const { return txFsmState_; }
   TxFsmState lastTxFsmState() const { return lastTxFsmState_; }
   // LLDPDUs that passed the frame checks in the present rate-limit period.
   uint64_t rxLldpdus() const { return rxLldpdus_; }
   // LLDPDUs that the rate limit dropped since the machine was made.
   uint64_t rxLldpdusRateLimited() const { return rxLldpdusRateLimited_; }
   bool initialized() const { return initialized_; }

   // Whether these are what the machine was made for.
   bool standsOn(const Wirekit::Pam::PtrConst& pam, const Lldp::PortConfig::PtrConst& portConfig,
                 const Lldp::PortStatus::PtrConst& portStatus,
                 const Interface::EthPhyIntfStatus::PtrConst& ethPhyIntfStatus) const {
      return pam == pam_ && portConfig == portConfig_ && portStatus == portStatus_ &&
             ethPhyIntfStatus == ethPhyIntfStatus_;
   }

   // Something that the port advertises has changed: an LLDPDU goes out as early as txDelay allows.
   void doProcessSomethingChangedLocal();

 protected:
   // Removes the port's neighbours. Transmission ends silently.
   void doClose() override;

 private:
   void handleInitialized();

   // Transmit side.
   void txFsmStateIs(TxFsmState state);
   void lastTxFsmStateIs(TxFsmState state) { lastTxFsmState_ = state; }
   void handleTxFsmState();
   void handleTxFsmEvent(TxFsmEvent event);
   void txClockIs(double time, double now);
   void handleTxClock();
   void handleLinkStatusTx();
   void handleAdminStatus();
   void handleRemoteSystem(int key);
   void doCheckPortEnabled();
   void doSendLldpdu();
   Wirekit::Pkt::Ptr doBuildLldpdu();

   // Receive side.
   static void handleArrival(std::span<const uint8_t> frame);
   void handleReadableCount();
   bool takeHeader(Wirekit::Pkt& pkt);
   void handleLldpdu(Wirekit::Pkt& pkt, const Wirekit::EthHdr& header);
   bool overRateLimit();
   void handleRxRateLimitClock();
   void handleAgeClock();
   void handleLinkStatusRx();
   void doAgeOut(const Lldp::RemoteSystem::Msap& msap, int index);
   void doDeleteAllRemoteSystems();

   // The enumerators as an assertion's words call them.
   static constexpr TxFsmState txFsmDisabled() { return TxFsmState::txFsmDisabled; }
   static constexpr TxFsmState txFsmReinitializing() { return TxFsmState::txFsmReinitializing; }

   const Wirekit::IntfId intfId_;
   const Wirekit::Pam::Ptr pam_;
   const Rex::Ptr<Root> root_;
   Rex::Timer txClock_;
   Rex::Timer ageClock_;          // the earliest expiry among the port's neighbours
   Rex::Timer rxRateLimitClock_;  // the end of the present rate-limit period
   const Interface::EthPhyIntfStatus::PtrConst ethPhyIntfStatus_;
   const Lldp::PortConfig::PtrConst portConfig_;
   const Lldp::PortStatus::Ptr portStatus_;
   const Lldp::LocalPort::PtrConst localPort_;
   const Lldp::LocalSystem::PtrConst localSystem_;
   TxFsmState txFsmState_ = TxFsmState::txFsmUninitialized;
   TxFsmState lastTxFsmState_ = TxFsmState::txFsmUninitialized;
   uint64_t rxLldpdus_ = 0;
   uint64_t rxLldpdusRateLimited_ = 0;
   bool initialized_ = false;
};

}  // namespace Lldp::Agent::Protocol
