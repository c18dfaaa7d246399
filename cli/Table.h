// Text in columns.
#pragma once

#include <ostream>
#include <string>
#include <utility>
#include <vector>

#include "cli/Terminal.h"

namespace LldpCli {

struct Column {
   enum class Kind { text, number, name };  // numbers stand at the right
   std::string title;
   Kind kind = Kind::text;
};

class Table {
 public:
   explicit Table(std::vector<Column> columns) : columns_(std::move(columns)) {}

   // One cell for each column; an empty one is shown as a dash.
   void add(std::vector<std::string> row, Style style = Style::plain) {
      rows_.push_back({std::move(row), style});
   }
   // On a terminal, columns are cut until a line fits into it: long texts first, names last, and
   // the widest of its kind before another. Elsewhere nothing is cut.
   void print(std::ostream& out, const Terminal& terminal) const;

 private:
   struct Row {
      std::vector<std::string> cells;
      Style style;
   };
   std::vector<size_t> widths(std::optional<size_t> width) const;
   std::string line(const std::vector<std::string>& cells, const std::vector<size_t>& widths) const;

   std::vector<Column> columns_;
   std::vector<Row> rows_;
};

// One labelled value a line, the values one below the other.
using Fields = std::vector<std::pair<std::string, std::string>>;
void printFields(std::ostream& out, const Fields& fields, const std::string& indent = "");

}  // namespace LldpCli
