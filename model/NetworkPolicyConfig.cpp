#include "model/NetworkPolicyConfig.h"

namespace Lldp {

void NetworkPolicyConfig::copyFrom(const NetworkPolicyConfig& other) {
   uint8_t application = appType;
   *this = other;
   appType = application;
}

NetworkPolicyTlv NetworkPolicyConfig::toNetworkPolicyTlv() const {
   return {appType, false, tagged, vlanId, l2Priority, dscp};
}

bool NetworkPolicyConfig::equivalent(const NetworkPolicyConfig& a, const NetworkPolicyConfig& b) {
   return a.tagged == b.tagged && a.vlanId == b.vlanId && a.l2Priority == b.l2Priority &&
          a.dscp == b.dscp;
}

}  // namespace Lldp
