// GET /v1/events: what happens to neighbours and ports, in an operator's terms, told to whoever
// listens. The machines that watch for it stand as long as somebody does.
#pragma once

#include <memory>
#include <optional>
#include <vector>

#include "Rex/Owned.h"
#include "Statestore/EntityManager.h"
#include "host/ApiResources.h"
#include "host/ApiStream.h"
#include "host/Outlets.h"
#include "host/Watch/LinkDirSm.h"
#include "host/Watch/LldpStatusSm.h"

namespace Host {

class LldpEvents {
 public:
   // `besideAgent`: the agent is in this process, and so its log tells why neighbours go.
   explicit LldpEvents(Rex::Ptr<Statestore::EntityManager> entityManager, bool besideAgent = true)
       : entityManager_(std::move(entityManager)), besideAgent_(besideAgent) {}

   void serveIn(ApiResources& resources);
   // Events go to the stream for as long as what is returned is held; `standing` begins with what
   // stands.
   std::shared_ptr<void> listenerIs(ApiStream& stream, bool standing);
   size_t listeners() const { return listeners_.size(); }

   // For the machines: tells every listener. `data` gets the time ahead of it.
   void tell(const char* event, const Rex::Json& data);
   bool heard() const { return !listeners_.empty(); }
   // Why a neighbour goes in the present reaction; `own`: of the agent in this process.
   const char* goneReason(bool own) const;

 private:
   struct Listener;

   void start();
   void stop();
   void tellStanding(ApiStream& stream) const;
   void handleLog(const Rex::LogEvent& event);

   const Rex::Ptr<Statestore::EntityManager> entityManager_;
   const bool besideAgent_;
   std::vector<ApiStream*> listeners_;
   uint64_t lastId_ = 0;
   std::optional<LogTap> logTap_;
   const char* reason_ = nullptr;  // of the event that the agent logged last
   uint32_t reasonReaction_ = 0;   // the reaction that it was logged in
   Rex::OwnedMachine<LinkDirSm> linkDirSm_;
   Rex::OwnedMachine<LldpStatusSm> lldpStatusSm_;
};

}  // namespace Host
