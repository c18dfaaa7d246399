// Classifier of VLAN interfaces: Vlan<vlan>.
#pragma once

#include "Wirekit/IntfId.h"
#include "Wirekit/IntfNumbers.h"

namespace Wirekit {

struct VlanIntfId {
   static bool isVlanIntfId(const IntfId& intfId) { return numbers(intfId).count > 0; }
   static uint32_t vlan(const IntfId& intfId) { return numbers(intfId).number[0]; }

 private:
   static IntfNumbers numbers(const IntfId& intfId) {
      auto found = intfNumbers(intfId.stringValue().view(), "Vlan");
      return found && found->count == 1 ? *found : IntfNumbers{};
   }
};

}  // namespace Wirekit
