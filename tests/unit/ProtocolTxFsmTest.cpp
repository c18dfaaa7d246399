// The page that shows the transition table says what the table says.
#include <gmock/gmock.h>

#include <fstream>

#include "Lldp/LldpProtocolSm/TxFsm.h"
#include "Rex/Value.h"

namespace {

using namespace Lldp::Agent::Protocol;

std::vector<std::string> cellsOf(const std::string& line) {
   std::vector<std::string> cells;
   std::istringstream in(line);
   std::string cell;
   std::getline(in, cell, '|');  // what stands in front of the first bar
   while (std::getline(in, cell, '|')) {
      auto from = cell.find_first_not_of(" `");
      auto to = cell.find_last_not_of(" `");
      cells.push_back(from == std::string::npos ? "" : cell.substr(from, to - from + 1));
   }
   return cells;
}

// The rows of the page's table that begins with a cell "state".
std::vector<std::vector<std::string>> tableOfThePage() {
   std::ifstream page(LLDP_DOCS "/protocol.md");
   EXPECT_TRUE(page) << "no docs/protocol.md";
   std::vector<std::vector<std::string>> rows;
   for (std::string line; std::getline(page, line);) {
      if (!line.starts_with("|")) {
         if (!rows.empty()) break;
         continue;
      }
      auto cells = cellsOf(line);
      if (rows.empty() && cells[0] != "state") continue;
      if (!cells[0].starts_with("-")) rows.push_back(cells);
   }
   return rows;
}

std::string text(const TxFsmCell& cell) {
   switch (cell.kind) {
      case TxFsmCell::Kind::transition:
         return Rex::enumeratorName(cell.next);
      case TxFsmCell::Kind::ignored:
         return "ignored";
      case TxFsmCell::Kind::impossible:
         return "impossible";
   }
   return "";
}

template <class Enum>
std::vector<Enum> all() {
   std::vector<Enum> values;
   boost::mp11::mp_for_each<boost::describe::describe_enumerators<Enum>>(
       [&](auto enumerator) { values.push_back(enumerator.value); });
   return values;
}

TEST(ProtocolTxFsm, PageShowsTheTable) {
   std::vector<std::vector<std::string>> expected(1, {"state"});
   for (auto event : all<TxFsmEvent>()) expected[0].push_back(Rex::enumeratorName(event));
   for (auto state : all<TxFsmState>()) {
      expected.push_back({Rex::enumeratorName(state)});
      for (auto event : all<TxFsmEvent>()) {
         expected.back().push_back(text(txFsmCell(state, event)));
      }
   }
   EXPECT_EQ(tableOfThePage(), expected);
}

}  // namespace
