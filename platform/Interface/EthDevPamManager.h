// Opens and closes packet access: while enabled, EthDevPamCollection holds an entry for each
// interface that is desired and exists as a device. A device that came back with another index is
// closed and opened anew.
//
// It acts in a turn of its own from the loop, never inside the call that asked for it: whoever
// reacts to an entry finds everything reported that the same reaction changed. A removal and an
// addition of one key never fall into one turn, so both are seen.
#pragma once

#include <map>
#include <set>

#include "Interface/DeviceIntfStatusDir.h"
#include "Interface/EthDevPamCollection.h"
#include "Interface/PamDesiredIntfDir.h"
#include "Interface/PamMaker.h"
#include "Rex/StateMachine.h"

namespace Interface {

class EthDevPamManager : public Rex::StateMachine {
 public:
   using Ptr = Rex::Ptr<EthDevPamManager>;
   EthDevPamManager(Rex::Ptr<PamDesiredIntfDir const> desiredIntfDir,
                    Rex::Ptr<EthDevPamCollection> pamCollection,
                    Rex::Ptr<DeviceIntfStatusDir const> deviceIntfStatusDir);

   // How devices are opened. A change concerns those that are opened after it.
   void ethProtocolIs(uint16_t ethProtocol) { config_.ethProtocol = ethProtocol; }
   void separateDot1QHdrIs(bool separate) { config_.separateDot1QHdr = separate; }
   void listenAddrIs(const Wirekit::EthAddr& addr) { config_.listenAddr = addr; }
   void filterProgramIs(const Wirekit::SockFilterProgram& program);
   void maxRxPktDataIs(size_t octets) { config_.maxRxPktData = octets; }
   void sockPrioIs(int priority) { config_.sockPrio = priority; }
   const PamConfig& config() const { return config_; }

   bool enabled() const { return enabled_; }
   void enabledIs(bool enabled);

 protected:
   // Takes everything out of the collection at once.
   void doClose() override;

 private:
   void handleIntf(Wirekit::IntfId intfId);
   void handleAll();
   void handleTurn();
   void handleRetry();
   void settle(const Wirekit::IntfId& intfId);
   void open(const DeviceIntfStatus& device);
   void shut(const Wirekit::IntfId& intfId);

   const Rex::Ptr<PamDesiredIntfDir const> desiredIntfDir_;
   const Rex::Ptr<EthDevPamCollection> pamCollection_;
   const Rex::Ptr<DeviceIntfStatusDir const> deviceIntfStatusDir_;
   PamConfig config_;
   bool enabled_ = false;
   Rex::Timer turn_;
   Rex::Timer retry_;
   double patience_;                                     // seconds until the next retry
   std::set<Wirekit::IntfId> due_;                       // to be settled in the next turn
   std::set<Wirekit::IntfId> failed_;                    // could not be opened
   std::map<Wirekit::IntfId, DeviceIntfStatus> opened_;  // what each entry was opened on
};

}  // namespace Interface
