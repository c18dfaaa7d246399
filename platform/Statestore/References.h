// Which places point to which rows, as the store has it. A place whose target does not stand waits
// for it and is empty meanwhile; it is filled when the target comes, and emptied when it goes.
#pragma once

#include <map>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

#include "Rex/Entity.h"

namespace Statestore {

class References {
 public:
   using PlaceName = std::pair<std::string, std::string>;  // the row's path, the field

   // A place points to the row that stands at `target`, waits for it, or does neither.
   void points(const PlaceName& place, const std::string& target);
   void pointsNowhere(const PlaceName& place);
   void waits(const PlaceName& place, const std::string& target);
   void endWait(const PlaceName& place);
   void endAllWaits();
   // The fields of a row that wait, and what for.
   std::vector<std::pair<std::string, std::string>> waitsOf(const std::string& row) const;
   bool isWaiting(const PlaceName& place, const std::string& target) const;
   // A place points to an entity that has no row (any more).
   void dangles(const PlaceName& place, const Rex::Ptr<Rex::Entity>& entity);

   void handleCame(const std::string& row);
   void handleGone(const std::string& row, const Rex::Ptr<Rex::Entity>& entity);

   // A place to be looked at again, since its target came or, with `gone`, went. Without a target
   // it is to be empty.
   struct Due {
      PlaceName place;
      std::string target;
      Rex::Ptr<Rex::Entity> gone;
   };
   std::vector<Due> takeDue() { return std::exchange(due_, {}); }

   // The JSON of a reference, and the way back: nothing for what is none.
   static std::string toText(const std::string& target);
   static std::optional<std::string> fromText(std::string_view text);

 private:
   // Those of each target, and the same the other way round.
   std::unordered_map<std::string, std::set<PlaceName>> pointing_;
   std::map<PlaceName, std::string> targets_;
   std::unordered_map<std::string, std::set<PlaceName>> awaited_;
   std::map<PlaceName, std::string> waiting_;
   std::vector<Due> due_;
};

}  // namespace Statestore
