// What help on the command line and the manual page both tell.
#pragma once

#include <span>
#include <string>
#include <vector>

namespace LldpCli {

// What is explained, and the explanation.
struct HelpLine {
   std::string what;
   std::string words;
};

// What each setting takes; for `unset` the settings alone.
std::vector<HelpLine> settingLines(bool withValues);
std::span<const HelpLine> portsForms();
std::span<const HelpLine> examples();
std::span<const HelpLine> exitStatuses();
std::span<const HelpLine> environment();

// In two columns that fit a terminal of 80.
std::string twoColumns(std::span<const HelpLine> lines);
std::string settingsHelp(bool withValues);
std::string examplesHelp();

}  // namespace LldpCli
