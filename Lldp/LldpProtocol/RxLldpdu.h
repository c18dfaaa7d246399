// Reading a received LLDPDU into the neighbour that sent it.
#pragma once

#include <string_view>

#include "Wirekit/EthAddr.h"
#include "model/Config.h"
#include "model/Status.h"

namespace Lldp::Agent {

// To be called as early as possible for an LLDPDU that will be read: what its sender was last time
// begins to come from memory.
void expectLldpdu(std::string_view lldpdu);

// Takes in one LLDPDU, from behind the Ethernet header to the frame's end, and moves the counters.
// Whatever its octets are, nothing is raised and no memory is held on to but for the neighbour's
// and a bounded table (Whereabouts). Returns the neighbour that the frame made or refreshed; null
// after a shutdown frame, after a fatal error, and when the port's limit stopped a new neighbour.
// `status` is this supervisor's.
RemoteSystem::PtrConst processRxLldpdu(char* begin, char* end, PortConfig::PtrConst portConfig,
                                       Status::Ptr status, PortStatus::Ptr portStatus,
                                       const Wirekit::EthAddr& srcAddr);

}  // namespace Lldp::Agent
