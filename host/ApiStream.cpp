#include "host/ApiStream.h"

#include <fmt/format.h>

#include <algorithm>

#include "Rex/Printable.h"
#include "host/ApiMessage.h"
#include "host/ApiTarget.h"

namespace Host {

std::string eventText(std::string_view name, const Rex::Json& data, uint64_t id) {
   std::string number = id ? fmt::format("id: {}\n", id) : std::string();
   // In its compact form JSON is one line, whatever is in it.
   return fmt::format("{}event: {}\ndata: {}\n\n", number, name,
                      data.dump(-1, ' ', true, Rex::Json::error_handler_t::replace));
}

bool standingWanted(const ApiTarget& target) {
   auto at = target.parameters.find("standing");
   if (at == target.parameters.end() || at->second == "0") return false;
   if (at->second == "1") return true;
   throw ApiError(400, "standing: expected 0 or 1, got '" + Rex::printable(at->second) + "'",
                  "standing");
}

void ApiStream::beginIs(std::string_view octets) {
   begin_ += octets.size();
   append(octets);
}

void ApiStream::eventIs(std::string_view event) {
   if (missed_ || eventBytes() + event.size() > room_) {
      ++missed_;
      tellMissed();
   } else {
      append(event);
   }
}

void ApiStream::endIs(std::string_view event) {
   ended_ = true;
   if (missed_) append(eventText("missed", {{"events", std::exchange(missed_, 0)}}));
   append(event);
}

// Not before half of the room is there again, or every other event would be a `missed`.
void ApiStream::tellMissed() {
   if (!missed_ || eventBytes() > room_ / 2) return;
   append(eventText("missed", {{"events", std::exchange(missed_, 0)}}));
}

void ApiStream::append(std::string_view octets) {
   bool first = waiting().empty();
   octets_ += octets;
   if (first) ready_();
}

void ApiStream::sent(size_t octets) {
   begin_ -= std::min(begin_, octets);
   gone_ += octets;
   if (gone_ == octets_.size()) {
      octets_ = {};
      gone_ = 0;
   } else if (gone_ > octets_.size() / 2) {
      octets_.erase(0, gone_);
      gone_ = 0;
   }
   tellMissed();
}

}  // namespace Host
