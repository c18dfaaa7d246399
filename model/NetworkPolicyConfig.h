// The operator's network policy for an application of LLDP-MED.
#pragma once

#include <boost/describe.hpp>
#include <cstdint>

#include "Rex/Value.h"
#include "model/Organisation.h"

namespace Lldp {

struct NetworkPolicyConfig {
   uint8_t appType = 0;  // 0: the row for every application without a row of its own
   Rex::String policyName = "default";
   bool tagged = false;
   uint16_t vlanId = 0;
   uint8_t l2Priority = 0;
   uint8_t dscp = 0;

   // Copies all but the application.
   void copyFrom(const NetworkPolicyConfig& other);
   NetworkPolicyTlv toNetworkPolicyTlv() const;
   // Whether the two advertise the same policy, apart from the application.
   static bool equivalent(const NetworkPolicyConfig& a, const NetworkPolicyConfig& b);
   bool operator==(const NetworkPolicyConfig&) const = default;
};
BOOST_DESCRIBE_STRUCT(NetworkPolicyConfig, (),
                      (appType, policyName, tagged, vlanId, l2Priority, dscp))

}  // namespace Lldp
