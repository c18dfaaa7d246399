#include "Lldp/LldpProtocolSm/ProtocolSm.h"

#include "Lldp/LldpProtocolSm/Root.h"
#include "Rex/System.h"
#include "Rex/Trace.h"

namespace Lldp::Agent::Protocol {
namespace {

const Rex::TraceHandle trace("LldpAgent", false);

}  // namespace

// `ip6ManagementAddress` is not watched: a new one goes out with the next regular frame.
ProtocolSm::ProtocolSm(Interface::EthDevPamCollection::Ptr pamCollection,
                       Lldp::LocalSystem::PtrConst localSystem, Rex::Ptr<Root> root,
                       Interface::AllEthPhyIntfStatusDir::PtrConst ethPhyIntfStatusDir,
                       Lldp::Config::PtrConst config, Lldp::Status::PtrConst status)
    : pamCollection_(std::move(pamCollection)),
      localSystem_(std::move(localSystem)),
      root_(std::move(root)),
      ethPhyIntfStatusDir_(std::move(ethPhyIntfStatusDir)),
      config_(std::move(config)),
      status_(std::move(status)) {
   on(pamCollection_, Interface::EthDevPamCollection::intfPamAttr, &ProtocolSm::handlePam);
   on(ethPhyIntfStatusDir_, Interface::AllEthPhyIntfStatusDir::intfStatusAttr,
      &ProtocolSm::handlePam);
   on(config_, Config::portConfigAttr, &ProtocolSm::handlePam);
   on(status_, Status::portStatusAttr, &ProtocolSm::handlePam);
   on(localSystem_, LocalSystem::localPortAttr, &ProtocolSm::handleLocalPort);
   on(localSystem_, LocalSystem::chassisIdentifierAttr, &ProtocolSm::handleLocalSystemAttrs);
   on(localSystem_, LocalSystem::sysNameAttr, &ProtocolSm::handleLocalSystemAttrs);
   on(localSystem_, LocalSystem::sysDescAttr, &ProtocolSm::handleLocalSystemAttrs);
   on(localSystem_, LocalSystem::sysCapSupportedAttr, &ProtocolSm::handleLocalSystemAttrs);
   on(localSystem_, LocalSystem::sysCapEnabledAttr, &ProtocolSm::handleLocalSystemAttrs);
   on(localSystem_, LocalSystem::managementAddressAttr, &ProtocolSm::handleLocalSystemAttrs);
   on(localSystem_, LocalSystem::managementAddressPrioAttr, &ProtocolSm::handleLocalSystemAttrs);

   handleInitialized();
}

ProtocolSm::~ProtocolSm() = default;

void ProtocolSm::handleInitialized() {
   TRACE(trace, 8, "ProtocolSm::handleInitialized()");
   // The packet manager is not enabled yet, so no port is complete.
   REX_ASSERT(pamCollection()->intfPams() == 0);
   for (auto [intfId, localPort] : localSystem()->localPort()) handleLocalPort(intfId);
}

void ProtocolSm::handlePam(const Wirekit::IntfId& intfId) {
   TRACE(trace, 8, "ProtocolSm::handlePam( " << intfId << " )");
   auto pam = pamCollection()->intfPam(intfId);
   auto portConfig = config()->portConfig(intfId);
   auto portStatus = status()->portStatus(intfId);
   auto ethPhyIntfStatus = ethPhyIntfStatusDir()->intfStatus(intfId);
   // Rows that another process makes come and go in any order; the machine needs this one too.
   auto localPort = localSystem()->localPort(intfId);
   bool complete = pam && portConfig && portStatus && ethPhyIntfStatus && localPort;

   if (auto sm = lldpPamSm(intfId)) {
      // One reaction may add several of these. The first one reported made the machine, which is
      // none of the others' concern. It may also replace one of them under its key: that is the
      // loss of what the machine stands on.
      if (complete && sm->standsOn(pam, portConfig, portStatus, ethPhyIntfStatus) &&
          sm->localPort() == localPort) {
         return;
      }
      lldpPamSmDel(intfId);
   }
   if (!complete) return;
   REX_ASSERT(!lldpPamSmHas(intfId));
   auto clock = Rex::ActivityFacility::activityManagerConfig().clock();
   lldpPamSmIs(intfId, intfId, pam, root(), clock, clock, clock);
}

void ProtocolSm::handleLocalPort(const Wirekit::IntfId& intfId) {
   TRACE(trace, 8, "ProtocolSm::handleLocalPort( " << intfId << " )");
   if (auto localPort = localSystem()->localPort(intfId)) {
      if (auto sm = localPortSm(intfId)) {
         if (sm->localPort() == localPort) return;  // adopted before its report
         // One reaction may replace the port under its key; its machine watches the old one then.
         localPortSmDel(intfId);
      }
      REX_ASSERT(!localPortSmHas(intfId));
      localPortSmIs(intfId, localPort, root());
   } else {
      REX_ASSERT(localPortSmHas(intfId));
      localPortSmDel(intfId);
   }
   handlePam(intfId);
}

void ProtocolSm::handleLocalSystemAttrs() {
   TRACE(trace, 8, "ProtocolSm::handleLocalSystemAttrs()");
   for (auto [intfId, sm] : lldpPamSm()) sm->doProcessSomethingChangedLocal();
}

void ProtocolSm::doClose() {
   lldpPamSm_.clear();
   localPortSm_.clear();
}

}  // namespace Lldp::Agent::Protocol
