// Ports that have to be looked at again when all of a frame is reported, which the time of the
// tables' last change tells.
#pragma once

#include "Rex/Dispatcher.h"
#include "Rex/HashMap.h"
#include "Wirekit/IntfId.h"

namespace Lldp::Agent::Input {

class NotedPorts {
 public:
   // True when the port is due at once: where one reaction brings several frames, a report may have
   // waited behind the time of change that it belongs to.
   bool add(const Wirekit::IntfId& intfId) {
      ports_.insert(intfId, true);
      return takenIn_ == Rex::Dispatcher::reaction && Rex::Dispatcher::running();
   }
   // That time is reported: calls `look` for each port, which is noted no more.
   template <class Look>
   void take(const Look& look) {
      takenIn_ = Rex::Dispatcher::reaction;
      for (auto [intfId, noted] : ports_) {
         ports_.erase(intfId);
         look(intfId);
      }
   }

 private:
   Rex::HashMap<Wirekit::IntfId, bool> ports_;
   uint32_t takenIn_ = Rex::Dispatcher::idle;  // the reaction of the last look
};

}  // namespace Lldp::Agent::Input
