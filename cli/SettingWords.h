// The words behind `lldp set` and `lldp unset`: one setting after another.
#pragma once

#include <string>
#include <vector>

#include "cli/Settings.h"

namespace LldpCli {

// One setting as it was typed.
struct Typed {
   const Setting* setting;
   std::vector<std::string> ports;  // where it is one of ports
   Json value;                      // with `set`
   std::string words;
};

// Reads settings, with their values for `set`. Throws Misuse that says what was expected where.
std::vector<Typed> readSettings(const std::vector<std::string>& words, bool withValues);

// The words that may follow; PORTS and NAME stand for what the table does not know. Nothing after
// words that are none.
std::vector<std::string> nextWords(const std::vector<std::string>& words, bool withValues);

}  // namespace LldpCli
