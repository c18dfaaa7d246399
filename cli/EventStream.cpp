#include "cli/EventStream.h"

#include <utility>

#include "cli/Failure.h"

namespace LldpCli {
namespace {

constexpr size_t longestEvent = 4 * 1024 * 1024;

}  // namespace

void EventStream::put(std::string_view octets) {
   for (size_t end; (end = octets.find('\n')) != std::string_view::npos;) {
      pending_ += octets.substr(0, end);
      octets.remove_prefix(end + 1);
      line(std::exchange(pending_, {}));
   }
   pending_ += octets;
   if (pending_.size() + data_.size() > longestEvent) {
      throw Failure("the agent sends an event without end");
   }
}

void EventStream::line(std::string_view line) {
   if (line.ends_with('\r')) line.remove_suffix(1);
   if (line.empty()) {
      if (!data_.empty()) take_(event_, data_);
      event_.clear();
      data_.clear();
      return;
   }
   size_t colon = line.find(':');
   std::string_view name = line.substr(0, colon);
   std::string_view value = colon == std::string_view::npos ? "" : line.substr(colon + 1);
   if (value.starts_with(' ')) value.remove_prefix(1);
   if (name == "event") event_ = value;
   if (name == "data") {
      if (!data_.empty()) data_ += '\n';
      data_ += value;
   }
}

}  // namespace LldpCli
