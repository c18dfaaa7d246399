#include "cli/Help.h"

#include <fmt/format.h>

#include <array>
#include <sstream>

#include "cli/Settings.h"

namespace LldpCli {
namespace {

constexpr size_t width = 80;
constexpr size_t indent = 2;
constexpr size_t column = 34;

const auto exampleLines = std::to_array<HelpLine>({
    {"lldp show neighbors", "who is at the other end of each cable"},
    {"lldp show neighbors Ethernet1 detail", "everything that the neighbor on one port says"},
    {R"TEXT(lldp show neighbors --json | jq -r '.neighbors[] | "\(.port) \(.systemName)"')TEXT",
     "the same "
     "for a "
     "script"},
    {"lldp set interval 10 hold-time 40", "two settings at once"},
    {"lldp set port Ethernet1-4,Management1 status receive", "five ports that only listen"},
    {"lldp unset tlv all", "all TLVs are sent again"},
    {"lldp show config", "what differs from the defaults, as commands"},
    {"lldp watch --standing", "who is there, and then what changes"},
    {"lldp --store redis://10.0.0.1 show neighbors", "of all agents, on any machine"},
});

const auto portsLines = std::to_array<HelpLine>({
    {"Ethernet1", "one port, which need not be there yet"},
    {"Ethernet1-4, Ethernet3/1-12", "a range of the last number"},
    {"Ethernet1,Ethernet7,Management1", "several"},
});

const auto statusLines = std::to_array<HelpLine>({
    {"0", "done"},
    {"1",
     "it could not be done: no agent at the socket, no state store, no right to use it, no such "
     "port, or the "
     "agent refuses; nothing was changed"},
    {"2", "the command line was not understood; nothing was changed"},
});

const auto environmentLines = std::to_array<HelpLine>({
    {"LLDP_SOCKET", "the agent's socket where --socket does not name one"},
    {"LLDP_STORE", "the state store where neither --store nor --socket names a place"},
    {"NO_COLOR", "no colours on a terminal, when set and not empty"},
    {"TERM", "no colours where it is 'dumb' or not set"},
});

// The words from a column on, in as many lines as they take.
void wrap(std::string& out, size_t at, size_t from, const std::string& words) {
   std::istringstream in(words);
   for (std::string word; in >> word;) {
      bool fits = at + 1 + word.size() <= width;
      if (at < from) {
         out.append(from - at, ' ');
         at = from;
      } else if (at > from && fits) {
         out += ' ';
         ++at;
      } else {
         out += "\n" + std::string(from, ' ');
         at = from;
      }
      out += word;
      at += word.size();
   }
   out += "\n";
}

}  // namespace

std::vector<HelpLine> settingLines(bool withValues) {
   std::vector<HelpLine> lines;
   bool group = false;
   for (const Setting& setting : allSettings()) {
      bool inGroup = setting.words.starts_with("tlv ");
      if (group && !inGroup) {
         lines.push_back({withValues ? "tlv all on|off" : "tlv all", "all of these TLVs at once"});
      }
      group = inGroup;
      std::string what(setting.words);
      if (withValues) what += " " + valueForm(setting);
      lines.push_back({what, helpText(setting)});
   }
   return lines;
}

std::span<const HelpLine> portsForms() {
   return portsLines;
}
std::span<const HelpLine> examples() {
   return exampleLines;
}
std::span<const HelpLine> exitStatuses() {
   return statusLines;
}
std::span<const HelpLine> environment() {
   return environmentLines;
}

std::string twoColumns(std::span<const HelpLine> lines) {
   std::string out;
   for (const HelpLine& line : lines) {
      out += std::string(indent, ' ') + line.what;
      size_t at = indent + line.what.size();
      // What is too long for its column has the explanation in the next line.
      if (at + 2 > column) {
         out += "\n";
         at = 0;
      }
      wrap(out, at, column, line.words);
   }
   return out;
}

std::string settingsHelp(bool withValues) {
   std::string out = "Settings:\n" + twoColumns(settingLines(withValues)) + "\nPORTS:\n" +
                     twoColumns(portsForms());
   out.pop_back();
   return out;
}

std::string examplesHelp() {
   return "Examples:\n" + twoColumns(examples()) + R"(
The command talks to lldp-agentd through its socket; the permissions of the
socket decide who may. 'lldp show neighbors --help' tells more of one command.)";
}

}  // namespace LldpCli
