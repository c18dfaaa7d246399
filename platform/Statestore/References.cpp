#include "Statestore/References.h"

#include "Statestore/Place.h"

namespace Statestore {

void References::points(const PlaceName& place, const std::string& target) {
   endWait(place);
   pointsNowhere(place);
   pointing_[target].insert(place);
   targets_.emplace(place, target);
}

void References::pointsNowhere(const PlaceName& place) {
   auto at = targets_.find(place);
   if (at == targets_.end()) return;
   auto pointing = pointing_.find(at->second);
   pointing->second.erase(place);
   if (pointing->second.empty()) pointing_.erase(pointing);
   targets_.erase(at);
}

void References::waits(const PlaceName& place, const std::string& target) {
   endWait(place);
   waiting_.emplace(place, target);
   awaited_[target].insert(place);
}

void References::endWait(const PlaceName& place) {
   auto at = waiting_.find(place);
   if (at == waiting_.end()) return;
   auto awaited = awaited_.find(at->second);
   awaited->second.erase(place);
   if (awaited->second.empty()) awaited_.erase(awaited);
   waiting_.erase(at);
}

void References::endAllWaits() {
   waiting_.clear();
   awaited_.clear();
}

std::vector<std::pair<std::string, std::string>> References::waitsOf(const std::string& row) const {
   std::vector<std::pair<std::string, std::string>> found;
   for (auto at = waiting_.lower_bound({row, {}}); at != waiting_.end() && at->first.first == row;
        ++at) {
      found.emplace_back(at->first.second, at->second);
   }
   return found;
}

bool References::isWaiting(const PlaceName& place, const std::string& target) const {
   auto at = waiting_.find(place);
   return at != waiting_.end() && at->second == target;
}

void References::dangles(const PlaceName& place, const Rex::Ptr<Rex::Entity>& entity) {
   endWait(place);
   // It was sent as empty, and so is not to follow what comes in the target's stead.
   std::erase_if(due_, [&](const Due& due) { return due.place == place; });
   due_.push_back({place, {}, entity});
}

void References::handleCame(const std::string& row) {
   auto awaited = awaited_.find(row);
   if (awaited == awaited_.end()) return;
   for (const PlaceName& place : awaited->second) due_.push_back({place, row, nullptr});
}

void References::handleGone(const std::string& row, const Rex::Ptr<Rex::Entity>& entity) {
   auto pointing = pointing_.find(row);
   if (pointing != pointing_.end()) {
      for (const PlaceName& place : pointing->second) {
         due_.push_back({place, row, entity});
         targets_.erase(place);
      }
      pointing_.erase(pointing);
   }
   // What the row itself pointed to.
   for (auto at = targets_.lower_bound({row, {}});
        at != targets_.end() && at->first.first == row;) {
      PlaceName place = (at++)->first;
      pointsNowhere(place);
   }
   for (auto at = waiting_.lower_bound({row, {}});
        at != waiting_.end() && at->first.first == row;) {
      PlaceName place = (at++)->first;
      endWait(place);
   }
}

std::string References::toText(const std::string& target) {
   return Rex::Json{{"path", target}}.dump();
}

std::optional<std::string> References::fromText(std::string_view text) {
   Rex::Json json = parseValue(text);
   if (!json.is_object() || json.size() != 1 || !json.contains("path")) return std::nullopt;
   if (!json["path"].is_string()) return std::nullopt;
   return json["path"].get<std::string>();
}

}  // namespace Statestore
