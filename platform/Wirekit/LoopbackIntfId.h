// Classifier of loopback interfaces: Loopback<loopback>.
#pragma once

#include "Wirekit/IntfId.h"
#include "Wirekit/IntfNumbers.h"

namespace Wirekit {

struct LoopbackIntfId {
   static bool isLoopbackIntfId(const IntfId& intfId) { return numbers(intfId).count > 0; }
   static uint32_t loopback(const IntfId& intfId) { return numbers(intfId).number[0]; }

 private:
   static IntfNumbers numbers(const IntfId& intfId) {
      auto found = intfNumbers(intfId.stringValue().view(), "Loopback");
      return found && found->count == 1 ? *found : IntfNumbers{};
   }
};

}  // namespace Wirekit
