// What one reader of a stream has still to be sent: server-sent events (HTML Living Standard, 9.2),
// in the order in which they came and within a bound. What does not fit is left out, counted, and
// told as `missed` in the place where it would have stood.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

#include "Rex/Json.h"

namespace Host {

struct ApiTarget;

// An event as it travels; `id` 0 for none.
std::string eventText(std::string_view name, const Rex::Json& data, uint64_t id = 0);

// Whether a request for a stream asks for what stands to be told first. Throws ApiError.
bool standingWanted(const ApiTarget& target);

class ApiStream {
 public:
   // `room`: octets of events that may wait. `ready` is called when the first of them comes, from
   // within whatever raised the event; it must not send.
   ApiStream(size_t room, std::function<void()> ready) : room_(room), ready_(std::move(ready)) {}
   ApiStream(const ApiStream&) = delete;
   ApiStream& operator=(const ApiStream&) = delete;

   // What the reader gets ahead of all events; it takes none of their room.
   void beginIs(std::string_view octets);
   void eventIs(std::string_view event);
   // The last event, for which there always is room.
   void endIs(std::string_view event);

   std::string_view waiting() const { return std::string_view(octets_).substr(gone_); }
   // As many of them have gone out.
   void sent(size_t octets);
   bool over() const { return ended_ && waiting().empty(); }

 private:
   size_t eventBytes() const { return octets_.size() - gone_ - begin_; }
   void append(std::string_view octets);
   void tellMissed();

   const size_t room_;
   const std::function<void()> ready_;
   std::string octets_;
   size_t gone_ = 0;   // of `octets_`
   size_t begin_ = 0;  // of what waits, ahead of all events
   uint64_t missed_ = 0;
   bool ended_ = false;
};

}  // namespace Host
