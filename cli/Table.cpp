#include "cli/Table.h"

#include <algorithm>
#include <numeric>

#include "cli/Width.h"

namespace LldpCli {
namespace {

constexpr size_t gap = 2;
constexpr size_t readable = 8;  // a text that is cut further than this is hard to tell
constexpr size_t least = 3;

// Which column is cut before which.
int readiness(Column::Kind kind, size_t width) {
   if (kind == Column::Kind::text && width > readable) return 2;
   return kind != Column::Kind::name && width > least ? 1 : 0;
}

const std::string& shown(const std::string& cell) {
   static const std::string nothing = "-";
   return cell.empty() ? nothing : cell;
}

}  // namespace

std::vector<size_t> Table::widths(std::optional<size_t> width) const {
   std::vector<size_t> wide;
   for (const Column& column : columns_) wide.push_back(displayWidth(column.title));
   for (const auto& row : rows_) {
      for (size_t i = 0; i < wide.size(); ++i) {
         wide[i] = std::max(wide[i], displayWidth(shown(row.cells[i])));
      }
   }
   if (!width) return wide;
   size_t total = std::accumulate(wide.begin(), wide.end(), (wide.size() - 1) * gap);
   for (; total > *width; --total) {
      size_t giver = 0;
      for (size_t i = 1; i < wide.size(); ++i) {
         auto rank = [&](size_t column) {
            return std::pair(readiness(columns_[column].kind, wide[column]), wide[column]);
         };
         if (rank(i) > rank(giver)) giver = i;
      }
      if (wide[giver] <= 1) break;
      --wide[giver];
   }
   return wide;
}

std::string Table::line(const std::vector<std::string>& cells,
                        const std::vector<size_t>& widths) const {
   std::string out;
   for (size_t i = 0; i < cells.size(); ++i) {
      std::string cell = cut(shown(cells[i]), widths[i]);
      std::string fill(widths[i] - displayWidth(cell), ' ');
      if (i > 0) out.append(gap, ' ');
      out += columns_[i].kind == Column::Kind::number ? fill + cell : cell + fill;
   }
   out.erase(out.find_last_not_of(' ') + 1);
   return out;
}

void Table::print(std::ostream& out, const Terminal& terminal) const {
   std::vector<size_t> wide = widths(terminal.width);
   std::vector<std::string> titles;
   for (const Column& column : columns_) titles.push_back(column.title);
   out << styled(line(titles, wide), Style::heading, terminal) << "\n";
   for (const Row& row : rows_) {
      out << styled(line(row.cells, wide), row.style, terminal) << "\n";
   }
}

void printFields(std::ostream& out, const Fields& fields, const std::string& indent) {
   size_t widest = 0;
   for (const auto& [label, value] : fields) widest = std::max(widest, displayWidth(label));
   for (const auto& [label, value] : fields) {
      std::string fill(widest - displayWidth(label) + gap, ' ');
      out << indent << label << fill << shown(value) << "\n";
   }
}

}  // namespace LldpCli
