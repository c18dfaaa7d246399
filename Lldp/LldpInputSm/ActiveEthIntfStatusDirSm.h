// Keeps a machine for each physical interface that LLDP can run on. Exists on an active supervisor
// alone.
#pragma once

#include "Foreign/Bridging.h"
#include "Interface/EthLagIntfStatus.h"
#include "Interface/EthPhyIntfStatus.h"
#include "Lldp/LldpInputSm/EthLagIntfStatusSm.h"
#include "Lldp/LldpInputSm/EthPhyIntfStatusSm.h"
#include "Lldp/LldpInputSm/MgmtEthPhyIntfStatusSm.h"
#include "Rex/Owned.h"
#include "Rex/StateMachine.h"

namespace Lldp::Agent::Input {

class Root;

class ActiveEthIntfStatusDirSm : public Rex::StateMachine {
 public:
   ActiveEthIntfStatusDirSm(Interface::EthLagIntfStatusDir::PtrConst ethLagIntfStatusDir,
                            Interface::AllEthPhyIntfStatusDir::PtrConst ethPhyIntfStatusDir,
                            Bridging::HwCapabilities::PtrConst bridgingHwCapabilities,
                            Rex::Ptr<Root> root);
   ~ActiveEthIntfStatusDirSm() override;

   const Interface::EthLagIntfStatusDir::PtrConst& ethLagIntfStatusDir() const {
      return ethLagIntfStatusDir_;
   }
   const Bridging::HwCapabilities::PtrConst& bridgingHwCapabilities() const {
      return bridgingHwCapabilities_;
   }
   const Rex::Ptr<Root>& root() const { return root_; }

   const Rex::HashMap<Wirekit::IntfId, Rex::Ptr<EthPhyIntfStatusSm>>& ethPhyIntfStatusSm() const {
      return ethPhyIntfStatusSm_.all();
   }
   // Makes the interface's machine, or returns the one that stands, which has to be the same
   // entity's.
   Rex::Ptr<EthPhyIntfStatusSm> ethPhyIntfStatusSmIs(
       const Interface::EthPhyIntfStatus::PtrConst& intfStatus, ActiveEthIntfStatusDirSm* parent);
   void ethPhyIntfStatusSmDel(const Wirekit::IntfId& intfId) { ethPhyIntfStatusSm_.erase(intfId); }

   // The same for the part that management ports have besides.
   Rex::Ptr<MgmtEthPhyIntfStatusSm> mgmtEthPhyIntfStatusSmIs(
       const Interface::EthPhyIntfStatus::PtrConst& intfStatus, const Rex::Ptr<Root>& root);
   void mgmtEthPhyIntfStatusSmDel(const Wirekit::IntfId& intfId) {
      mgmtEthPhyIntfStatusSm_.erase(intfId);
   }

 private:
   void handleInitialized();
   void handlePhyIntfStatus(const Wirekit::IntfId& intfId);
   void handleLagIntfStatus(const Wirekit::IntfId& intfId);
   void doClose() override;

   const Interface::EthLagIntfStatusDir::PtrConst ethLagIntfStatusDir_;
   const Interface::AllEthPhyIntfStatusDir::PtrConst ethPhyIntfStatusDir_;
   const Bridging::HwCapabilities::PtrConst bridgingHwCapabilities_;
   const Rex::Ptr<Root> root_;
   // Declared first, so that it outlives the machines that empty it.
   Rex::OwnedMachines<MgmtEthPhyIntfStatusSm, Wirekit::IntfId> mgmtEthPhyIntfStatusSm_;
   Rex::OwnedMachines<EthPhyIntfStatusSm, Wirekit::IntfId> ethPhyIntfStatusSm_;

   REX_MACHINES(EthLagIntfStatusSm, ethLagIntfStatusSm, Wirekit::IntfId)
};

}  // namespace Lldp::Agent::Input
