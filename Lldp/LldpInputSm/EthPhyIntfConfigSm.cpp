#include "Lldp/LldpInputSm/EthPhyIntfConfigSm.h"

#include "Lldp/LldpInputSm/Root.h"
#include "Rex/Assert.h"
#include "Rex/Trace.h"

namespace Lldp::Agent::Input {
namespace {

const Rex::TraceHandle trace("LldpAgent", false);

}  // namespace

EthPhyIntfConfigSm::EthPhyIntfConfigSm(Interface::EthPhyIntfConfig::PtrConst ethPhyIntfConfig,
                                       Rex::Ptr<Root> root)
    : ethPhyIntfConfig_(std::move(ethPhyIntfConfig)), root_(std::move(root)) {
   on(ethPhyIntfConfig_, Interface::EthPhyIntfConfig::descriptionAttr,
      &EthPhyIntfConfigSm::handleDescription);

   handleInitialized();
}

EthPhyIntfConfigSm::~EthPhyIntfConfigSm() = default;

void EthPhyIntfConfigSm::handleInitialized() {
   TRACE(trace, 8, "EthPhyIntfConfigSm::handleInitialized() for " << intfId());
   handleDescription();
}

void EthPhyIntfConfigSm::handleDescription() {
   TRACE(trace, 8, "EthPhyIntfConfigSm::handleDescription() for " << intfId());
   if (auto localPort = root_->localSystem()->localPort(intfId())) doSyncLocalPort(localPort);
}

// An empty description is told as it is: the interface's name already goes out as the port ID.
void EthPhyIntfConfigSm::doSyncLocalPort(const LocalPort::Ptr& localPort) {
   REX_ASSERT(localPort->intfId() == intfId());
   localPort->portDescIs(
       BoundedString255(ethPhyIntfConfig_->description().substr(0, BoundedString255::maxBytes)));
}

}  // namespace Lldp::Agent::Input
