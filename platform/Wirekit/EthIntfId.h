// Classifier of Ethernet ports: Ethernet<port>, Ethernet<module>/<port> or
// Ethernet<module>/<port>/<lane>. A port of the switch chip that is wired to no connector bears the
// same numbers behind UnconnectedEthernet; it is an Ethernet port too.
#pragma once

#include "Wirekit/IntfId.h"
#include "Wirekit/IntfNumbers.h"

namespace Wirekit {

struct EthIntfId {
   static bool isEthIntfId(const IntfId& intfId) { return numbers(intfId).has_value(); }
   static bool isUnconnected(const IntfId& intfId) {
      return intfId.stringValue().startsWith(unconnected);
   }
   // 0 where the name does not give the number.
   static uint32_t module(const IntfId& intfId) {
      auto found = numbers(intfId);
      return found && found->count > 1 ? found->number[0] : 0;
   }
   static uint32_t port(const IntfId& intfId) {
      auto found = numbers(intfId);
      return found ? found->number[found->count > 1 ? 1 : 0] : 0;
   }
   static uint32_t lane(const IntfId& intfId) {
      auto found = numbers(intfId);
      return found ? found->number[2] : 0;
   }

 private:
   static constexpr std::string_view connected = "Ethernet";
   static constexpr std::string_view unconnected = "UnconnectedEthernet";
   static std::optional<IntfNumbers> numbers(const IntfId& intfId) {
      return intfNumbers(intfId.stringValue().view(),
                         isUnconnected(intfId) ? unconnected : connected);
   }
};

}  // namespace Wirekit
