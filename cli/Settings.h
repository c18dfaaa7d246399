// What an operator can set: the one table behind `lldp set`, `unset` and `show config`, their
// help, the manual page and the completion of words.
#pragma once

#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "cli/Client.h"

namespace LldpCli {

struct Number {
   unsigned least;
   unsigned most;
   const char* unit;
   // The attribute counts as many parts of the unit: 10 for tenths, which then may be typed.
   unsigned parts = 1;
};

struct Choice {
   std::string_view word;
   std::string_view value;  // JSON
   // Field of the value that takes the NAME which then follows the word; none: no NAME follows.
   std::string_view nameField{};
};
using Choices = std::span<const Choice>;

// A word of NetworkPolicies.h.
struct Policies {};

// A name of visible characters.
struct Word {
   size_t longest;
};

struct Setting {
   static constexpr std::string_view ports = "PORTS";

   std::string_view words;      // PORTS stands for a list of ports
   std::string_view attribute;  // path below the configuration's entity, PORTS for a port
   std::variant<Number, Choices, Word, Policies> value;
   std::string_view standard;  // the default, as it is typed; empty where there is no such name
   std::string_view help;

   bool ofPorts() const { return attribute.find(ports) != std::string_view::npos; }
};

inline constexpr std::string_view configPath = "l2discovery/lldp/cliConfig";
std::span<const Setting> allSettings();

// Its words split at the blanks.
std::vector<std::string> wordsOf(const Setting& setting);
// What may be typed behind its words: SECONDS, on|off, best|all|interface NAME.
std::string valueForm(const Setting& setting);
// A line of help, with the range where the form does not tell it, and the default.
std::string helpText(const Setting& setting);
// A value as it is typed, or nothing when it cannot be typed.
std::optional<std::string> typedValue(const Setting& setting, const Json& value);

// The value of one word. Throws Misuse that names the setting and what it takes.
Json numberValue(const Setting& setting, const Number& number, const std::string& word);
Json policiesValue(const Setting& setting, const std::string& word);
std::string nameValue(const Setting& setting, const Word& name, const std::string& word);
// The longest NAME that can follow a choice.
inline constexpr Word interfaceName{64};

}  // namespace LldpCli
