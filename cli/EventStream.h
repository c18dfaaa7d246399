// Events out of a text/event-stream, however its octets were cut on their way (WHATWG HTML, 9.2).
#pragma once

#include <functional>
#include <string>
#include <string_view>

namespace LldpCli {

class EventStream {
 public:
   using Take = std::function<void(const std::string& event, const std::string& data)>;
   explicit EventStream(Take take) : take_(std::move(take)) {}

   // Throws Failure for an event longer than any that the agent sends.
   void put(std::string_view octets);

 private:
   void line(std::string_view line);

   Take take_;
   std::string pending_;  // of a line whose end has not come
   std::string event_;
   std::string data_;
};

}  // namespace LldpCli
