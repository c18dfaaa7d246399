// One port with all that the codec reads and writes, and no machine around it.
#pragma once

#include <string>
#include <vector>

#include "Lldp/LldpProtocol/RxLldpdu.h"

namespace LldpTest {

struct CodecPort {
   Wirekit::IntfId intfId{"Ethernet7"};
   Lldp::Config::Ptr config = Rex::make<Lldp::Config>();
   Lldp::PortConfig::Ptr portConfig = config->portConfigIs(intfId);
   Lldp::Status::Ptr status = Rex::make<Lldp::Status>();
   Lldp::PortStatus::Ptr portStatus = status->portStatusIs(intfId, 0.0);
   Wirekit::EthAddr srcAddr{2, 0, 0, 0, 0, 1};

   // Takes in one LLDPDU, copied so that a sanitizer sees every read past its end.
   Lldp::RemoteSystem::PtrConst receive(const std::string& lldpdu) {
      std::vector<char> copy(lldpdu.begin(), lldpdu.end());
      copy.shrink_to_fit();
      return Lldp::Agent::processRxLldpdu(copy.data(), copy.data() + copy.size(), portConfig,
                                          status, portStatus, srcAddr);
   }
   Lldp::RemoteSystem::PtrConst neighbour(int index) const {
      return portStatus->remoteSystem(index);
   }
};

}  // namespace LldpTest
