// Classifier of link aggregation groups: Port-Channel<channel>.
#pragma once

#include "Wirekit/IntfId.h"
#include "Wirekit/IntfNumbers.h"

namespace Wirekit {

struct PortChannelIntfId {
   static bool isPortChannelIntfId(const IntfId& intfId) { return numbers(intfId).count > 0; }
   static uint32_t channel(const IntfId& intfId) { return numbers(intfId).number[0]; }

 private:
   static IntfNumbers numbers(const IntfId& intfId) {
      auto found = intfNumbers(intfId.stringValue().view(), "Port-Channel");
      return found && found->count == 1 ? *found : IntfNumbers{};
   }
};

}  // namespace Wirekit
