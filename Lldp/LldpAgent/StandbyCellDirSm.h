// Keeps the other supervisor's status on the active one: it stands as long as that supervisor is in
// the chassis.
#pragma once

#include "Rex/Dir.h"
#include "Rex/StateMachine.h"

namespace Lldp::Agent {

class StandbyCellDirSm : public Rex::StateMachine {
 public:
   // `cellDir` has an entry for each cell that is present, under its number.
   StandbyCellDirSm(Rex::Dir::PtrConst cellDir, Rex::Dir::Ptr lldpStatusDir);

   const Rex::String& peerCellId() const { return peerCellId_; }

 private:
   void handleInitialized();
   void handleEntry(const Rex::String& name);
   void handleStandbyCellDir(const Rex::String& name);

   const Rex::Dir::PtrConst cellDir_;
   const Rex::Dir::Ptr lldpStatusDir_;
   Rex::String peerCellId_;
};

}  // namespace Lldp::Agent
