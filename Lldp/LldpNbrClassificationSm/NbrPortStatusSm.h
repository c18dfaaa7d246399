// Tells NbrClassificationSm of every neighbour on one port from which address it is heard, and when
// what it says of itself may make it a telephone or none.
#pragma once

#include "Lldp/LldpInputSm/RemoteSystemsSm.h"
#include "Lldp/LldpNbrClassificationSm/HeardAddrs.h"

namespace Lldp::Agent::NbrClassification {

class NbrClassificationSm;

class NbrPortStatusSm : public Input::RemoteSystemsSm {
 public:
   // `place` is the port's in the walk over all of them.
   NbrPortStatusSm(Lldp::PortStatus::PtrConst portStatus, uint64_t place,
                   NbrClassificationSm* parent);
   ~NbrPortStatusSm() override;

 private:
   struct Known {
      Wirekit::EthAddr ethAddr;
      uint64_t place;
   };

   void doAdd(const RemoteSystem::PtrConst& remoteSystem) override;
   void doRemove(const RemoteSystem::PtrConst& remoteSystem) override;
   void handleEthAddr(const Rex::Change& change);
   void handleSystemCapabilities(const Rex::Change& change);
   void doClose() override;

   const uint64_t place_;
   NbrClassificationSm* const parent_;
   uint64_t nextPlace_ = 0;
   Rex::HashMap<int, Known> known_;  // by index
};

}  // namespace Lldp::Agent::NbrClassification
