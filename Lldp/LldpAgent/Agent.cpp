#include "Lldp/LldpAgent/Agent.h"

#include <cstdlib>

#include "Foreign/Kiln.h"
#include "Lldp/LldpInputSm/IntfKinds.h"
#include "Rex/Assert.h"
#include "Rex/EntityType.h"
#include "Rex/System.h"
#include "Rex/Trace.h"
#include "RingLog/RingLog.h"
#include "Statestore/Cell.h"
#include "Statestore/IpMountKit.h"
#include "Statestore/RexPool.h"

namespace Lldp::Agent {
namespace {

const Rex::TraceHandle trace("LldpAgent", false);

constexpr unsigned long fdLimit = 1200;
constexpr int poolMode = 3;  // how the kernel's table in shared memory is mapped
// Bridge and router, and bridge alone (IEEE Std 802.1AB-2016, table 8-4).
constexpr uint16_t sysCapSupported = 0x14;
constexpr uint16_t sysCapEnabled = 0x04;

template <class T>
Rex::String typeName() {
   return Rex::String(std::remove_const_t<T>::staticType().name());
}

template <class T>
void take(const Rex::Ptr<Statestore::EntityManager>& entityManager, const Rex::String& path,
          Rex::Ptr<T>& attribute) {
   attribute = Rex::dynamicPtr<T>(entityManager->getEntity(path.view()));
}

Rex::String cellName() {
   return Rex::format("%d", Cell::cellId());
}

}  // namespace

Agent::Agent(const Rex::String& name) : CAgent(name) {}

// The roots and the machines that hold them would otherwise keep each other alive.
Agent::~Agent() {
   doCleanup();
}

template <class Mount, class Ip>
void Agent::forEachMount(const Mount& mount, const Ip& ip) {
   mount("l2discovery/lldp/cliConfig", "r", cliConfig_);
   mount("l2discovery/lldp/remTablesCliConfig", "r", remTablesCliConfig_);
   mount(Cell::path("l2discovery/lldp/remTablesStatus", 0), "wf", remTablesStatus_);
   mount("l2discovery/lldp/externalTlvs", "ri", externalTlvs_);
   mount("l2discovery/lldp/config", "w", lldpConfig_);
   mount("l2discovery/lldp/status/local", "wif", lldpStatusDir_);
   mount("hardware/cellInfo", "r", cellDir_);
   mount("l2discovery/lldp/status/all", "w", allLldpStatus_);
   mount("l2discovery/lldp/localSystem", "wi", localSystem_);
   mount("bridging/config", "r", bridgingConfig_);
   mount("bridging/hwcapabilities", "r", bridgingHwCapabilities_);
   ip();
   mount("routing/config", "r", routingConfig_);
   mount(Cell::path("sys/net/status", 0), "r", netStatus_);
   mount("hardware/entmib", "ri", entityMibStatus_);
   mount("environment/power/status/poePort", "ri", poePortStatus_);
   mount("identity/nbrClassification/status", "w", nbrClassficationStatus_);
   mount("identity/nbrClassification/cliConfig", "r", identityCliConfig_);
   mount("identity/dot1x/status", "ri", identityDot1xStatus_);
}

template <class Local>
void Agent::forEachLocal(const Local& local) {
   local("AllIntfStatusDir", "interface/status/all", allIntfStatusDir_);
   local("AllIntfStatusLocalDir", Cell::path("interface/status/local", 0), allIntfStatusLocalDir_);
   local("AllEthPhyIntfStatusDir", "interface/status/eth/phy/all", ethPhyIntfStatusDir_);
   local("AllEthPhyIntfConfigDir", "interface/config/eth/phy/all", ethPhyIntfConfigDir_);
   local("EthLagIntfStatusDir", "interface/status/eth/lag", ethLagIntfStatusDir_);
}

void Agent::doInit() {
   Rex::String ringFile = name();
   if (!std::getenv("RINGLOGDIR")) ringFile += Rex::String("-%d");
   RingLog::Sizes sizes;
   sizes.fill(32);
   RingLog::initialize(ringFile + Rex::String(".rl"), sizes, nullptr, 0, 24, 0, true, 512);
   TRACE(trace, 8, "Agent::doInit()");
   Kiln::setFdLimit(fdLimit);
   Rex::ActivityFacility::activityManagerConfig().useEpollIs(true);

   auto group = entityManager()->getMountGroup(this);
   forEachMount(
       [&]<class T>(const Rex::String& path, const char* flags, Rex::Ptr<T>&) {
          group->doMount(Statestore::Mount(path, typeName<T>(), flags));
       },
       [&] { IpMountKit::IpMountKitIpStatusMounter().doMountEntities(group, true, true); });
   ifIndexMounter_ = Rex::make<Interface::DynamicIfIndexMounter>("diim", entityManager());
   forEachLocal([&]<class T>(const Rex::String& name, const Rex::String& path, Rex::Ptr<T>&) {
      createLocalEntity(name, typeName<T>().view(), path.view());
   });
   localEntitiesCreatedIs(true);
   group->doClose(false, "", 0.0);
}

void Agent::doMountsComplete(Statestore::MountStatus mountStatus,
                             const Rex::Ptr<Statestore::EntityManager>&) {
   if (stopped_) return;
   TRACE(trace, 8, "Agent::doMountsComplete()");
   REX_ASSERT(mountStatus == Statestore::mountSuccess_);
   mountsComplete_ = true;
   doTakeEntities();
   if (redundancyStatus()->protocol() == Redundancy::protocolHotStandby &&
       redundancyStatus()->mode() == Redundancy::modeStandby) {
      // The active supervisor makes this cell's status, and the second step comes with it.
      standbyLldpStatusDirSmIs(lldpStatusDir_, this);
      return;
   }
   TRACE(trace, 5, "doMountsComplete Creating lldpStatusDir entry for cell: " << Cell::cellId());
   lldpStatusDir_->createEntity(cellName(), "Lldp::Status");
   doMountsCompleteStep2();
}

void Agent::doTakeEntities() {
   forEachMount([&](const Rex::String& path, const char*,
                    auto& attribute) { take(entityManager(), path, attribute); },
                [&] {
                   take(entityManager(), "ip/status", ipStatus_);
                   take(entityManager(), "ip6/status", ip6Status_);
                });
   forEachLocal([&](const Rex::String&, const Rex::String& path, auto& attribute) {
      take(entityManager(), path, attribute);
   });
   Rex::String kniPath = Rex::format(
       "kni/ns/%s/status", Wirekit::NamespaceName::defaultNamespace().stringValue().charPtr());
   auto pool = Rex::make<RexPool::Mount>(entityManager());
   pool->doMount(kniPath.view(), "KernelNetInfo::Status", RexPool::MountInfo(poolMode));
   kniStatus_ = Rex::dynamicPtr<KernelNetInfo::Status const>(pool->getEntity(kniPath.view()));
}

void Agent::doMountsCompleteStep2() {
   TRACE(trace, 8, "Agent::doMountsCompleteStep2()");
   lldpStatusLocal_ = Rex::dynamicPtr<Lldp::Status>(lldpStatusDir_->entityPtr(cellName()));
   doStartProtocol();
   doStartInput();
   // Runs handleStandbyMode() here and now if this supervisor is active.
   redundancyStatusSmIs(redundancyStatus(), this);
   if (standbyMode_) {
      REX_ASSERT(lldpStatusLocal());
      doSweepPortStatus("doMountsCompleteStep2");
      inputRoot_->standbyEthIntfStatusDirSmIs(ethPhyIntfStatusDir_, lldpConfig_, localSystem_,
                                              inputRoot_);
   }
   // Last, for it enables packet access: no port machine starts before all the rest stands.
   protocolRoot_->onOffSwitchSmIs(cliConfig_, protocolRoot_->pamMan());
}

void Agent::doStartProtocol() {
   const auto& root = protocolRootIs("protocolRoot");
   root->ethPhyIntfStatusDirIs(ethPhyIntfStatusDir_);
   root->configIs(lldpConfig_);
   root->statusIs(lldpStatusLocal_);
   root->localSystemIs(localSystem_);
   root->deviceIntfStatusDirIs("deviceIntfStatusDir");
   root->intfStatusManagerRootIs(allIntfStatusDir_, allIntfStatusLocalDir_, false);
   root->intfStatusManagerRoot()->intfStatusManagerIs(root->deviceIntfStatusDir(), kniStatus_,
                                                      Wirekit::NamespaceName::defaultNamespace());
   root->desiredIntfDirIs("desiredIntfDir");
   root->pamCollectionIs("pamCollection");
   root->doInitializePamMan();
   root->protocolSmIs(root->pamCollection(), localSystem_, root, ethPhyIntfStatusDir_, lldpConfig_,
                      lldpStatusLocal_);
}

void Agent::doStartInput() {
   const auto& root = inputRootIs("inputRoot");
   root->localSystemIs(localSystem_);
   root->configIs(lldpConfig_);
   root->statusIs(lldpStatusLocal_);
   root->remTablesStatusIs(remTablesStatus_);
   root->bridgingConfigIs(bridgingConfig_);
   root->allIntfStatusDirIs(allIntfStatusDir_);
   root->desiredIntfDirIs(protocolRoot_->desiredIntfDir());
   root->remTablesClearRequestSmIs(remTablesCliConfig_, root);
   root->identityDot1xStatusSmIs(identityDot1xStatus_, root);
}

void Agent::standbyModeIs(bool standbyMode) {
   if (standbyMode_ == standbyMode) return;
   standbyMode_ = standbyMode;
   handleStandbyMode();
}

void Agent::handleStandbyMode() {
   TRACE(trace, 8, "Agent::handleStandbyMode()");
   // An active agent stays active, also when the mode goes away and comes back.
   if (standbyMode_ || inputRoot_->inputSm()) return;
   localSystem_->sysCapSupportedIs(sysCapSupported);
   localSystem_->sysCapEnabledIs(sysCapEnabled);
   doSweepPortStatus("handleStandbyMode");
   doSweepLocalRows();
   doStartActive();
}

// Status, configuration and local information outlive the process: what has no interface any more
// goes.
void Agent::doSweepPortStatus(const char* handler) {
   for (auto [intfId, portStatus] : lldpStatusLocal()->portStatus()) {
      if (!ethPhyIntfStatusDir_->intfStatusHas(intfId)) {
         TRACE(trace, 5,
               handler << " Deleting lldpStatusLocal()->portStatus entry for: " << intfId);
         lldpStatusLocal()->portStatusDel(intfId);
      } else if (!Input::lldpCapable(intfId)) {
         // A status is only ever made for such an interface.
         Rex::assertionFailed("Lldp::Agent::Input::lldpCapable( i.key() )", __FILE__, __LINE__,
                              __func__);
      }
   }
}

void Agent::doSweepLocalRows() {
   for (auto [intfId, portConfig] : lldpConfig_->portConfig()) {
      if (!ethPhyIntfStatusDir_->intfStatusHas(intfId)) lldpConfig_->portConfigDel(intfId);
   }
   for (auto [intfId, localPort] : localSystem_->localPort()) {
      if (!ethPhyIntfStatusDir_->intfStatusHas(intfId)) localSystem_->localPortDel(intfId);
   }
   localSystem_->managementAddressPrioDelAll();
   localSystem_->managementAddressDelAll();
   for (auto [intfId, localPort] : localSystem_->localPort()) localPort->unknownOrgDefTlvDelAll();
}

void Agent::doStartActive() {
   sysDescrIs();
   sysDescrSmIs(entityMibStatus_, sysDescr_);
   const auto& root = inputRoot_;
   root->poeSmIs(lldpStatusLocal(), localSystem_, poePortStatus_);
   root->networkPolicySmIs(lldpConfig_, lldpStatusLocal(), localSystem_);
   root->inputSmIs(ethPhyIntfConfigDir_, bridgingConfig_, bridgingHwCapabilities_, ipStatus_,
                   ip6Status_, routingConfig_, sysDescr_, externalTlvs_, netStatus_, cliConfig_,
                   allIntfStatusDir_, root);
   root->standbyEthIntfStatusDirSmDel();
   root->activeEthIntfStatusDirSmIs(ethLagIntfStatusDir_, ethPhyIntfStatusDir_,
                                    bridgingHwCapabilities_, root);
   root->nbrClassificationSmIs(ethPhyIntfStatusDir_, lldpStatusLocal(), identityCliConfig_,
                               identityDot1xStatus_, nbrClassficationStatus_);
   standbyCellDirSmIs(cellDir_, lldpStatusDir_);
   statusAccumulatorSmIs(lldpStatusLocal(), nullptr, lldpStatusDir_, allLldpStatus_);
}

const Protocol::Root::Ptr& Agent::protocolRootIs(const Rex::String& name) {
   if (!protocolRoot_ || protocolRoot_->name() != name) {
      protocolRoot_ = Protocol::rootFactory(name);
   }
   return protocolRoot_;
}

const Input::Root::Ptr& Agent::inputRootIs(const Rex::String& name) {
   if (!inputRoot_ || inputRoot_->name() != name) inputRoot_ = Input::rootFactory(name);
   return inputRoot_;
}

void Agent::sysDescrIs() {
   sysDescr_ = Rex::make<EntityMib::SysDescr>();
}

void Agent::doCleanup() {
   // Whoever could still start something comes first. The merged status is followed to the end, so
   // that no reader finds in it what goes now.
   stopped_ = true;
   standbyLldpStatusDirSmDel();
   redundancyStatusSmDel();
   standbyCellDirSmDel();
   if (protocolRoot_) {
      protocolRoot_->onOffSwitchSmDel();
      protocolRoot_->protocolSmDel();
   }
   if (inputRoot_) {
      inputRoot_->activeEthIntfStatusDirSmDel();
      inputRoot_->standbyEthIntfStatusDirSmDel();
      inputRoot_->inputSmDel();
      inputRoot_->remTablesClearRequestSmDel();
      inputRoot_->nbrClassificationSmDel();
      inputRoot_->networkPolicySmDel();
      inputRoot_->poeSmDel();
      // The interface machines relied on it to the last.
      inputRoot_->identityDot1xStatusSmDel();
   }
}

Agent::Ptr agentFactory(const Rex::String& name) {
   return Rex::make<Agent>(name);
}

}  // namespace Lldp::Agent

AgentBase::CAgent* agentFactory(const char* name) {
   return Lldp::Agent::agentFactory(Rex::String(name)).release();
}

void doCleanup(AgentBase::CAgent* agent) {
   dynamic_cast<Lldp::Agent::Agent&>(*agent).doCleanup();
}
