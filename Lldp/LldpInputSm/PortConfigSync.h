// How a PortConfig row follows the operator's configuration.
#pragma once

#include "Foreign/Bridging.h"
#include "Rex/Ptr.h"
#include "model/CliConfig.h"
#include "model/Config.h"

namespace Lldp::Agent::Input {

class Root;

// Derives the whole row anew. Does nothing while there is no InputSm.
void syncPortConfig(const PortConfig::Ptr& portConfig, const Rex::Ptr<Root>& root);

// Writes the port's status as requested, less the transmission that a monitoring switchport mode of
// the port or of its link aggregation group takes away. The only writer of `adminStatus` here.
void portAdminStatusIs(const PortConfig::Ptr& portConfig, AdminStatus requestedStatus,
                       const Bridging::Config::PtrConst& bridgingConfig,
                       const Rex::Ptr<Root>& root);

// Sets or clears, in the values given, what each of the operator's ten flags feeds.
void getEnabledTlvValues(const CliConfig::PtrConst& cliConfig, EnabledTlvs& enabledTlvs,
                         bool& mgmtAddrTxEnable, bool& portVlanTxEnable,
                         Dot3EnabledTlvs& dot3EnabledTlvs, TiaEnabledTlvs& tiaEnabledTlvs);

}  // namespace Lldp::Agent::Input
