// Classifier of management ports: Management<port> or Management<module>/<port>.
#pragma once

#include "Wirekit/IntfId.h"
#include "Wirekit/IntfNumbers.h"

namespace Wirekit {

struct MgmtIntfId {
   static bool isMgmtIntfId(const IntfId& intfId) { return numbers(intfId).count > 0; }
   // 0 where the name does not give the number.
   static uint32_t module(const IntfId& intfId) {
      IntfNumbers found = numbers(intfId);
      return found.count == 2 ? found.number[0] : 0;
   }
   static uint32_t port(const IntfId& intfId) {
      IntfNumbers found = numbers(intfId);
      return found.count == 2 ? found.number[1] : found.number[0];
   }

 private:
   static IntfNumbers numbers(const IntfId& intfId) {
      auto found = intfNumbers(intfId.stringValue().view(), "Management");
      return found && found->count <= 2 ? *found : IntfNumbers{};
   }
};

}  // namespace Wirekit
