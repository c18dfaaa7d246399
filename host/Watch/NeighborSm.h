// Tells what becomes of one neighbour. Holds it, so that it can still be shown when it has gone.
#pragma once

#include <vector>

#include "Rex/StateMachine.h"
#include "Wirekit/IntfId.h"
#include "host/Watch/TellStanding.h"
#include "model/RemoteSystem.h"

namespace Host {

class LldpStatusSm;

class NeighborSm : public Rex::StateMachine {
 public:
   // `own`: this supervisor's agent knows the neighbour, and not the other's.
   NeighborSm(const Wirekit::IntfId& port, Lldp::RemoteSystem::PtrConst remoteSystem, bool own,
              LldpStatusSm& parent);

   const Lldp::RemoteSystem::PtrConst& remoteSystem() const { return remoteSystem_; }
   void tellAdded() const;
   void tellChanged();
   void tellGone() const;
   void tellStanding(const TellStanding& tell) const;

 private:
   void handleAny(const Rex::Change& change);
   Rex::Json data() const;

   const Wirekit::IntfId port_;
   const Lldp::RemoteSystem::PtrConst remoteSystem_;
   const bool own_;
   LldpStatusSm& parent_;
   const uint32_t madeIn_;          // the reaction
   std::vector<uint32_t> changed_;  // attributes, in the order of their change
};

}  // namespace Host
