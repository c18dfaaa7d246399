#include "Statestore/Flight.h"

namespace Statestore {
namespace {

std::string placeName(const std::string& row, const std::string& field) {
   return row + '\n' + field;
}

}  // namespace

void Flight::index() const {
   if (!places_.empty()) return;
   for (const Operation& one : operations) {
      places_.insert(placeName(one.row, one.field));
      if (one.kind != Operation::Kind::set) rows_.insert(pathBelow(one.row, one.field));
   }
}

bool Flight::covers(const std::string& row, const std::string& field) const {
   index();
   if (places_.contains(placeName(row, field))) return true;
   for (size_t end = row.size(); end && end != std::string::npos; end = row.rfind('/', end - 1)) {
      if (rows_.contains(row.substr(0, end))) return true;
   }
   return false;
}

void Flight::applyTo(RowImages& rows, const std::string& path) const {
   for (const Operation& one : operations) {
      if (isWithin(one.row, path)) rows.apply(one);
   }
}

}  // namespace Statestore
