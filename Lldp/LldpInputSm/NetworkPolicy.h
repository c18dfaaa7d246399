// Network policies of LLDP-MED (ANSI/TIA-1057, 10.2.3): the operator's rows are the supply, what
// the neighbours of a port send is the demand, and the port tells the policies of the applications
// that are asked for, and no others.
#pragma once

#include "Rex/Ptr.h"
#include "Wirekit/IntfId.h"
#include "model/CliConfig.h"
#include "model/Config.h"
#include "model/LocalSystem.h"
#include "model/Status.h"

namespace Lldp::Agent::Input {

// Replaces the port's policies by the operator's rows, or by none. A port without policies does not
// claim the capability. `localPort` may be null.
void portNetworkPolicyConfigIs(Rex::Ptr<Lldp::PortConfig> portConfig,
                               Rex::Ptr<const Lldp::CliPortConfig> cliPortConfig,
                               Rex::Ptr<Lldp::LocalPort> localPort);

namespace NetworkPolicy {

// Makes the list of policies that the port tells anew, within one handler: no frame shows a part of
// it. Does nothing if one of the three is null.
void doSyncLocalNetworkPolicy(Wirekit::IntfId intfId, Rex::Ptr<const Lldp::PortConfig> portConfig,
                              Rex::Ptr<const Lldp::PortStatus> portStatus,
                              Rex::Ptr<Lldp::LocalPort> localPort);

// The policy for an application: its own row, or else the row for every application. The
// application of `result` stays. False if there is neither.
bool getAppConfig(const Rex::Ptr<const Lldp::PortConfig>& portConfig, unsigned char appType,
                  Lldp::NetworkPolicyConfig& result);

}  // namespace NetworkPolicy
}  // namespace Lldp::Agent::Input
