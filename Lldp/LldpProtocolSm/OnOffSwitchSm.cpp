#include "Lldp/LldpProtocolSm/OnOffSwitchSm.h"

#include "Rex/Trace.h"

namespace Lldp::Agent::Protocol {
namespace {

const Rex::TraceHandle trace("LldpAgent", false);

}  // namespace

OnOffSwitchSm::OnOffSwitchSm(Lldp::CliConfig::PtrConst cliConfig,
                             Interface::EthDevPamManager::Ptr pamMan)
    : cliConfig_(std::move(cliConfig)), pamMan_(std::move(pamMan)) {
   on(cliConfig_, CliConfig::enabledAttr, &OnOffSwitchSm::handleEnabled);

   handleInitialized();
}

void OnOffSwitchSm::handleInitialized() {
   TRACE(trace, 8, "OnOffSwitchSm::handleInitialized()");
   handleEnabled();
}

void OnOffSwitchSm::handleEnabled() {
   TRACE(trace, 8, "OnOffSwitchSm::handleEnabled()");
   pamMan()->enabledIs(cliConfig()->enabled());
}

void OnOffSwitchSm::doClose() {
   TRACE(trace, 8, "OnOffSwitchSm::doClose()");
   pamMan()->enabledIs(false);
}

}  // namespace Lldp::Agent::Protocol
