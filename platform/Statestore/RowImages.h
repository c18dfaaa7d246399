// Rows as the store has them, apart from the tree: a snapshot, or what a change makes.
#pragma once

#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "Statestore/Store.h"

namespace Statestore {

struct RowImage {
   std::string type;
   std::map<std::string, std::string, std::less<>> fields;  // and their JSON
};

class RowImages {
 public:
   RowImages() = default;
   explicit RowImages(std::vector<Row> rows);

   const RowImage* at(const std::string& path) const;
   // As the store does it. A row is made also when its holder is not here.
   void apply(const Operation& operation);
   // Holders before what they hold.
   std::vector<Row> rows() &&;

 private:
   void wipe(const std::string& path);
   std::map<std::string, RowImage, std::less<>> rows_;
};

// The path of the row that an operation makes or removes.
std::string pathBelow(const std::string& row, const std::string& field);
// Whether a row is the one at a path, or below it.
bool isWithin(std::string_view row, std::string_view path);

}  // namespace Statestore
