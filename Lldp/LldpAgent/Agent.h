// The LLDP agent as a whole: mounts what it reads and writes, makes the two roots and their
// machines in a fixed order, and decides how much of it runs on a standby supervisor.
#pragma once

#include "Foreign/Bridging.h"
#include "Foreign/CAgent.h"
#include "Foreign/Dot1x.h"
#include "Foreign/EntityMib.h"
#include "Foreign/Ip.h"
#include "Foreign/Ip6.h"
#include "Foreign/KernelNetInfo.h"
#include "Foreign/NbrClassification.h"
#include "Foreign/Routing.h"
#include "Foreign/System.h"
#include "Interface/DynamicIfIndexMounter.h"
#include "Interface/EthLagIntfStatus.h"
#include "Interface/EthPhyIntfConfig.h"
#include "Interface/EthPhyIntfStatus.h"
#include "Interface/IntfStatus.h"
#include "Lldp/LldpAgent/RedundancyStatusSm.h"
#include "Lldp/LldpAgent/StandbyCellDirSm.h"
#include "Lldp/LldpAgent/StandbyLldpStatusDirSm.h"
#include "Lldp/LldpAgent/StatusAccumulatorSm.h"
#include "Lldp/LldpInputSm/Root.h"
#include "Lldp/LldpProtocolSm/Root.h"
#include "Rex/Dir.h"
#include "Rex/Owned.h"
#include "model/CliConfig.h"
#include "model/Config.h"
#include "model/LocalSystem.h"
#include "model/Status.h"

namespace Lldp::Agent {

class Agent : public AgentBase::CAgent {
 public:
   using Ptr = Rex::Ptr<Agent>;
   explicit Agent(const Rex::String& name);
   ~Agent() override;

   // Asks for the mounts. Throws std::system_error when the ring trace's file cannot be made.
   void doInit() override;
   void doMountsComplete(Statestore::MountStatus mountStatus,
                         const Rex::Ptr<Statestore::EntityManager>& entityManager) override;
   // Makes the machines, once this cell's status stands.
   void doMountsCompleteStep2();
   // Ends all machines in order. May come at any stage of the start, which then goes no further.
   void doCleanup();

   // True from the start. It becomes false at most once, which makes the machines of an active
   // supervisor; there is no way back.
   bool standbyMode() const { return standbyMode_; }
   void standbyModeIs(bool standbyMode);
   bool mountsComplete() const { return mountsComplete_; }

   const Lldp::Status::Ptr& lldpStatusLocal() const { return lldpStatusLocal_; }
   const Protocol::Root::Ptr& protocolRoot() const { return protocolRoot_; }
   const Input::Root::Ptr& inputRoot() const { return inputRoot_; }

 private:
   // Every mounted and every local entity, in order: its path, the letters of its mount or its
   // name, and the attribute that takes it. `ip` stands where the mounts of IP status do.
   template <class Mount, class Ip>
   void forEachMount(const Mount& mount, const Ip& ip);
   template <class Local>
   void forEachLocal(const Local& local);

   void doTakeEntities();
   void doStartProtocol();
   void doStartInput();
   void doStartActive();
   void doSweepPortStatus(const char* handler);
   void doSweepLocalRows();
   void handleStandbyMode();
   const Protocol::Root::Ptr& protocolRootIs(const Rex::String& name);
   const Input::Root::Ptr& inputRootIs(const Rex::String& name);
   void sysDescrIs();

   Lldp::CliConfig::PtrConst cliConfig_;
   Lldp::RemTablesCliConfig::PtrConst remTablesCliConfig_;
   Lldp::RemTablesStatus::Ptr remTablesStatus_;
   Rex::Dir::PtrConst externalTlvs_;
   Lldp::Config::Ptr lldpConfig_;
   Lldp::Status::Ptr lldpStatusLocal_;
   Rex::Dir::PtrConst cellDir_;
   Lldp::AllStatus::Ptr allLldpStatus_;
   Rex::Dir::Ptr lldpStatusDir_;
   Lldp::LocalSystem::Ptr localSystem_;
   Interface::AllIntfStatusDir::PtrConst allIntfStatusDir_;
   Interface::AllIntfStatusLocalDir::PtrConst allIntfStatusLocalDir_;
   Interface::AllEthPhyIntfStatusDir::PtrConst ethPhyIntfStatusDir_;
   Interface::AllEthPhyIntfConfigDir::PtrConst ethPhyIntfConfigDir_;
   Interface::EthLagIntfStatusDir::PtrConst ethLagIntfStatusDir_;
   Bridging::Config::PtrConst bridgingConfig_;
   Bridging::HwCapabilities::PtrConst bridgingHwCapabilities_;
   Ip::Status::PtrConst ipStatus_;
   Ip6::Status::PtrConst ip6Status_;
   Routing::Config::PtrConst routingConfig_;
   EntityMib::Status::PtrConst entityMibStatus_;
   System::NetStatus::PtrConst netStatus_;
   EntityMib::SysDescr::Ptr sysDescr_;
   KernelNetInfo::Status::PtrConst kniStatus_;
   Protocol::Root::Ptr protocolRoot_;
   Input::Root::Ptr inputRoot_;
   Rex::Dir::PtrConst poePortStatus_;
   Identity::NbrClassification::Status::Ptr nbrClassficationStatus_;
   Identity::NbrClassification::CliConfig::PtrConst identityCliConfig_;
   Identity::Dot1x::Status::PtrConst identityDot1xStatus_;
   bool standbyMode_ = true;
   bool mountsComplete_ = false;
   bool stopped_ = false;
   Rex::Ptr<Interface::DynamicIfIndexMounter> ifIndexMounter_;

   REX_MACHINE(EntityMib::SysDescrSm, sysDescrSm)
   REX_MACHINE(RedundancyStatusSm, redundancyStatusSm)
   REX_MACHINE(StatusAccumulatorSm, statusAccumulatorSm)
   REX_MACHINE(StandbyCellDirSm, standbyCellDirSm)
   REX_MACHINE(StandbyLldpStatusDirSm, standbyLldpStatusDirSm)
};

// Makes an agent. Nothing runs before its doInit().
Agent::Ptr agentFactory(const Rex::String& name);

}  // namespace Lldp::Agent

// The ways into the loadable module, found by name.
extern "C" {
// A new agent, with one reference that becomes the caller's (Rex::Ptr<...>::adopt).
AgentBase::CAgent* agentFactory(const char* name);
// Stops an agent of this module in order.
void doCleanup(AgentBase::CAgent* agent);
}
