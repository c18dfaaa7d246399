#include "host/Watch/LldpEvents.h"

#include <map>

#include "Rex/Log.h"
#include "Rex/System.h"
#include "host/Feeders/FedEntity.h"

namespace Host {
namespace {

Rex::Json timed(const Rex::Json& data) {
   Rex::Json whole{{"time", Rex::System::currentTime()}};
   whole.update(data);
   return whole;
}

}  // namespace

struct LldpEvents::Listener {
   LldpEvents& events;
   ApiStream* stream;

   Listener(LldpEvents& events, ApiStream& stream) : events(events), stream(&stream) {
      events.listeners_.push_back(this->stream);
   }
   ~Listener() {
      std::erase(events.listeners_, stream);
      if (!events.heard()) events.stop();
   }
};

void LldpEvents::serveIn(ApiResources& resources) {
   auto serve = [this](const ApiRequest&, const ApiTarget& target) {
      bool standing = standingWanted(target);
      ApiAnswer answer;
      answer.stream = [this, standing](ApiStream& stream) { return listenerIs(stream, standing); };
      return answer;
   };
   resources.resourceIs({"/v1/events", {"GET"}, {"standing"}, serve});
}

std::shared_ptr<void> LldpEvents::listenerIs(ApiStream& stream, bool standing) {
   // Before anybody listens, so that what the machines find is no news.
   if (!heard()) start();
   if (standing) tellStanding(stream);
   return std::make_shared<Listener>(*this, stream);
}

void LldpEvents::start() {
   logTap_.emplace(Rex::Context::current(),
                   [this](const Rex::LogEvent& event) { handleLog(event); });
   linkDirSm_.make(fedEntity<Interface::AllEthPhyIntfStatusDir>(*entityManager_,
                                                                "interface/status/eth/phy/all"),
                   *this);
   lldpStatusSm_.make(fedEntity<Lldp::AllStatus>(*entityManager_, "l2discovery/lldp/status/all"),
                      fedEntity<Rex::Dir>(*entityManager_, "l2discovery/lldp/status/local"), *this);
}

void LldpEvents::stop() {
   lldpStatusSm_.reset();
   linkDirSm_.reset();
   logTap_.reset();
}

void LldpEvents::tell(const char* event, const Rex::Json& data) {
   if (!heard()) return;
   std::string text = eventText(event, timed(data), ++lastId_);
   for (ApiStream* stream : listeners_) stream->eventIs(text);
}

// What stands bears the number of the last event that led to it.
void LldpEvents::tellStanding(ApiStream& stream) const {
   TellStanding tell = [&](const char* event, const Rex::Json& data) {
      stream.beginIs(eventText(event, timed(data), lastId_));
   };
   linkDirSm_.get()->tellStanding(tell);
   lldpStatusSm_.get()->tellStanding(tell);
   tell("standing-end", Rex::Json::object());
}

// The agent logs why it lets go of a neighbour, in the handler that does it; the table's change is
// delivered after that handler's end and still in its reaction.
void LldpEvents::handleLog(const Rex::LogEvent& event) {
   static const std::map<std::string_view, const char*> reasons = {
       {"LLDP_NEIGHBOR_GONE", "shutdown"},
       {"LLDP_NEIGHBOR_TIMEOUT", "timedOut"},
       {"LLDP_REMOTE_TABLES_CLEARED", "cleared"},
   };
   auto found = reasons.find(event.name);
   if (found == reasons.end()) return;
   reason_ = found->second;
   reasonReaction_ = Rex::Dispatcher::reaction;
}

const char* LldpEvents::goneReason(bool own) const {
   if (!besideAgent_) return "byAgent";
   // Why the other supervisor lets go of a neighbour stands in its own log.
   if (!own) return "otherSupervisor";
   bool logged = reason_ && reasonReaction_ == Rex::Dispatcher::reaction;
   return logged ? reason_ : "portLost";
}

}  // namespace Host
