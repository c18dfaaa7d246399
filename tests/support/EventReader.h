// Server-sent events as their reader sees them.
#pragma once

#include <cstdint>
#include <cstdlib>
#include <string>
#include <vector>

#include "Rex/Json.h"

namespace LldpTest {

struct ReadEvent {
   uint64_t id = 0;
   std::string name;
   Rex::Json data;
};

// The whole events in the octets, which are taken off them.
inline std::vector<ReadEvent> takeEvents(std::string& octets) {
   std::vector<ReadEvent> events;
   for (size_t end = 0; (end = octets.find("\n\n")) != std::string::npos;) {
      ReadEvent event;
      for (size_t at = 0; at < end;) {
         size_t next = octets.find('\n', at);
         std::string line = octets.substr(at, next - at);
         at = next + 1;
         if (line.starts_with("id: ")) event.id = std::strtoull(line.c_str() + 4, nullptr, 10);
         if (line.starts_with("event: ")) event.name = line.substr(7);
         if (line.starts_with("data: ")) event.data = Rex::Json::parse(line.substr(6));
      }
      octets.erase(0, end + 2);
      events.push_back(std::move(event));
   }
   return events;
}

}  // namespace LldpTest
