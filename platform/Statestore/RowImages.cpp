#include "Statestore/RowImages.h"

namespace Statestore {

RowImages::RowImages(std::vector<Row> rows) {
   for (Row& row : rows) {
      RowImage& image = rows_[row.path];
      image.type = std::move(row.type);
      for (auto& [field, value] : row.fields) image.fields[field] = std::move(value);
   }
}

const RowImage* RowImages::at(const std::string& path) const {
   auto found = rows_.find(path);
   return found == rows_.end() ? nullptr : &found->second;
}

void RowImages::apply(const Operation& operation) {
   const std::string path = pathBelow(operation.row, operation.field);
   auto holder = rows_.find(operation.row);
   switch (operation.kind) {
      case Operation::Kind::set:
         if (holder == rows_.end()) return;
         wipe(path);
         holder->second.fields[operation.field] = operation.value;
         return;
      case Operation::Kind::make:
         wipe(path);
         rows_[path].type = operation.value;
         if (holder != rows_.end())
            holder->second.fields[operation.field] = '"' + operation.value + '"';
         return;
      case Operation::Kind::remove:
         wipe(path);
         if (holder != rows_.end()) holder->second.fields.erase(operation.field);
         return;
      case Operation::Kind::require:
         return;
   }
}

std::vector<Row> RowImages::rows() && {
   std::vector<Row> rows;
   rows.reserve(rows_.size());
   for (auto& [path, image] : rows_) {
      Row& row = rows.emplace_back(Row{path, std::move(image.type), {}});
      row.fields.reserve(image.fields.size());
      for (auto& [field, value] : image.fields) row.fields.emplace_back(field, std::move(value));
   }
   return rows;
}

void RowImages::wipe(const std::string& path) {
   rows_.erase(path);
   // '0' is what follows the slash.
   rows_.erase(rows_.lower_bound(path + '/'), rows_.lower_bound(path + '0'));
}

std::string pathBelow(const std::string& row, const std::string& field) {
   return row.empty() ? field : row + '/' + field;
}

bool isWithin(std::string_view row, std::string_view path) {
   return row.starts_with(path) && (row.size() == path.size() || row[path.size()] == '/');
}

}  // namespace Statestore
