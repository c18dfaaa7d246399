#include "host/PowerFallback.h"

namespace Host {

PowerFallback::PowerFallback(Lldp::Config::Ptr config, Lldp::CliConfig::PtrConst cliConfig)
    : config_(std::move(config)), cliConfig_(std::move(cliConfig)) {
   on(config_, Lldp::Config::portConfigAttr, &PowerFallback::handlePortConfig);
   on(cliConfig_, Lldp::CliConfig::enabledAttr, &PowerFallback::handleEnabled);
   handleEnabled();
}

PowerFallback::~PowerFallback() = default;

void PowerFallback::handleEnabled() {
   for (auto [intfId, portConfig] : config_->portConfig()) handlePortConfig(intfId);
}

void PowerFallback::handlePortConfig(const Wirekit::IntfId& intfId) {
   auto portConfig = config_->portConfig(intfId);
   auto row = cliConfig_->cliPortConfig(intfId);
   if (portConfig && row) portConfig->poeAllocatedPowerFallbackIs(row->poeAllocatedPowerFallback());
}

}  // namespace Host
