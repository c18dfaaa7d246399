// Makes the entity of a row that others made, and in it all that the row holds: whole, before
// anybody sees it.
#pragma once

#include <map>
#include <string>
#include <vector>

#include "Statestore/Place.h"
#include "Statestore/References.h"
#include "Statestore/RowImages.h"

namespace Statestore {

class RowTable;

// Levels of rows below one another that are taken; going through them is a recursion.
inline constexpr int mostRowLevels = 16;

class RowBuilder {
 public:
   RowBuilder(RowTable& table, const RowImages& images) : table_(table), images_(images) {}

   // The entity of the row at `path`, which will stand at a place of `holder`. Null, or without
   // some of its places, where the row is wrong; `faults` tells.
   Rex::Ptr<Rex::Entity> build(const Rex::Entity& holder, const Place& place,
                               const std::string& path, int level = 0);
   // Fills what points to rows that stand, those just built among them; before they are seen.
   void point();
   // Tells the table of what points where; when the rows stand.
   void tell() const;

   std::vector<std::string> faults;

 private:
   Rex::Ptr<Rex::Entity> make(const Rex::Entity& holder, const Place& place, const RowImage& image);
   void fill(Rex::Entity& entity, const std::string& path, const std::string& field,
             const std::string& value, int level);

   struct Pointing {
      References::PlaceName name;
      Place place;
      std::string target;
   };

   RowTable& table_;
   const RowImages& images_;
   std::map<std::string, Rex::Ptr<Rex::Entity>> built_;  // by path
   std::vector<Pointing> pointing_;
};

}  // namespace Statestore
