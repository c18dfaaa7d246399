// What a port does with LLDPDUs, in the numbering of IEEE Std 802.1AB-2016, 11.5.1.
#pragma once

#include <boost/describe.hpp>
#include <cstdint>

namespace Lldp {

enum class AdminStatus : uint8_t { txOnly = 1, rxOnly = 2, txAndRx = 3, disabled = 4 };
BOOST_DESCRIBE_ENUM(AdminStatus, txOnly, rxOnly, txAndRx, disabled)

// Any value but the three that name a direction means disabled.
constexpr bool mayTransmit(AdminStatus status) {
   return status == AdminStatus::txOnly || status == AdminStatus::txAndRx;
}
constexpr bool mayReceive(AdminStatus status) {
   return status == AdminStatus::rxOnly || status == AdminStatus::txAndRx;
}

}  // namespace Lldp
