#include "Lldp/LldpInputSm/NetworkPolicy.h"

#include <set>

#include "Rex/Trace.h"

namespace Lldp::Agent::Input {
namespace {

const Rex::TraceHandle trace("LldpAgent", false);

constexpr uint16_t networkPolicyCapability = 0x02;

// Application types (ANSI/TIA-1057, table 12). Those up to 5 are not served.
constexpr uint8_t everyApplication = 0;
constexpr uint8_t lastUnsupported = 5;
constexpr uint8_t videoConferencing = 6;
constexpr uint8_t videoSignalling = 8;

std::set<uint8_t> requestedApplications(const Lldp::PortStatus& portStatus) {
   std::set<uint8_t> requested;
   for (auto [index, remoteSystem] : portStatus.remoteSystem()) {
      for (auto [appType, policy] : remoteSystem->networkPolicyTlv()) requested.insert(appType);
   }
   requested.erase(everyApplication);
   return requested;
}

// A signalling application with the policy of the application that it signals for is not told: the
// device uses that one. Of the signalling applications this one alone is looked at.
bool shouldSkipSignalingApplication(const Rex::Ptr<const Lldp::PortConfig>& portConfig,
                                    uint8_t appType, const Lldp::NetworkPolicyConfig& policy) {
   if (appType != videoSignalling) return false;
   Lldp::NetworkPolicyConfig streaming;
   return NetworkPolicy::getAppConfig(portConfig, videoConferencing, streaming) &&
          Lldp::NetworkPolicyConfig::equivalent(policy, streaming);
}

void maybeAddApplication(const Wirekit::IntfId& intfId, uint8_t appType,
                         const Rex::Ptr<const Lldp::PortConfig>& portConfig,
                         Lldp::LocalPort& localPort) {
   int application = appType;  // as a number in the words
   if (appType <= lastUnsupported) {
      TRACE(trace, 6,
            "Skipping unsupported LLDP-MED Network Policy app " << application << " in intf "
                                                                << intfId);
      return;
   }
   Lldp::NetworkPolicyConfig policy;
   policy.appType = appType;
   if (!NetworkPolicy::getAppConfig(portConfig, appType, policy)) return;
   if (shouldSkipSignalingApplication(portConfig, appType, policy)) {
      TRACE(trace, 6,
            "Skipping signaling application "
                << application << " because policy " << Rex::valueToString(policy)
                << " equivalent to corresponding streaming application in intf " << intfId);
      return;
   }
   TRACE(trace, 6,
         "Add application " << application << " to list with config " << Rex::valueToString(policy)
                            << " in intf " << intfId);
   localPort.localNetworkPolicyTlvIs(policy.toNetworkPolicyTlv());
}

}  // namespace

void portNetworkPolicyConfigIs(Rex::Ptr<Lldp::PortConfig> portConfig,
                               Rex::Ptr<const Lldp::CliPortConfig> cliPortConfig,
                               Rex::Ptr<Lldp::LocalPort> localPort) {
   portConfig->networkPolicyConfigDelAll();
   if (cliPortConfig) {
      for (auto [appType, row] : cliPortConfig->networkPolicyConfig()) {
         portConfig->networkPolicyConfigIs(row);
      }
   }
   if (!localPort) return;
   MedCapabilitiesInfo capabilities = localPort->medCapabilities();
   if (portConfig->networkPolicyConfig().empty()) {
      capabilities.capabilities &= static_cast<uint16_t>(~networkPolicyCapability);
   } else {
      capabilities.capabilities |= networkPolicyCapability;
   }
   localPort->medCapabilitiesIs(capabilities);
}

namespace NetworkPolicy {

void doSyncLocalNetworkPolicy(Wirekit::IntfId intfId, Rex::Ptr<const Lldp::PortConfig> portConfig,
                              Rex::Ptr<const Lldp::PortStatus> portStatus,
                              Rex::Ptr<Lldp::LocalPort> localPort) {
   TRACE(trace, 8,
         "doSyncLocalNetworkPolicy intf "
             << intfId << " portConfig " << static_cast<const void*>(portConfig.get())
             << " portStatus " << static_cast<const void*>(portStatus.get()) << " localPort "
             << static_cast<const void*>(localPort.get()));
   if (!portConfig || !portStatus || !localPort) return;
   localPort->localNetworkPolicyTlvDelAll();
   if (!portConfig->tiaEnabledTlvs().networkPolicy()) {
      TRACE(trace, 6,
            "Not adding LLDP-MED Network Policy TLV - TLV disabled in CLI for intf " << intfId);
      return;
   }
   if (!portStatus->networkPolicyTlvReceived()) {
      TRACE(trace, 6,
            "Not adding LLDP-MED Network Policy TLV - no request received in intf " << intfId);
      return;
   }
   for (uint8_t appType : requestedApplications(*portStatus)) {
      maybeAddApplication(intfId, appType, portConfig, *localPort);
   }
}

bool getAppConfig(const Rex::Ptr<const Lldp::PortConfig>& portConfig, unsigned char appType,
                  Lldp::NetworkPolicyConfig& result) {
   for (uint8_t key : {appType, everyApplication}) {
      if (portConfig->networkPolicyConfigHas(key)) {
         result.copyFrom(portConfig->networkPolicyConfig(key));
         return true;
      }
   }
   return false;
}

}  // namespace NetworkPolicy
}  // namespace Lldp::Agent::Input
