#include "cli/Settings.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <sstream>

#include "Rex/Printable.h"
#include "cli/Failure.h"
#include "cli/NetworkPolicies.h"

namespace LldpCli {
namespace {

constexpr auto onOff = std::to_array<Choice>({{"on", "true"}, {"off", "false"}});
constexpr auto acceptDrop = std::to_array<Choice>({{"accept", "false"}, {"drop", "true"}});
constexpr auto addresses = std::to_array<Choice>({
    {"best", R"({"mgmtAddrTxMode": "mgmtAddrTxModeBest"})"},
    {"all", R"({"mgmtAddrTxMode": "mgmtAddrTxModeAll"})"},
    {"interface", R"({"mgmtAddrTxMode": "mgmtAddrTxModeIntfName"})", "intfName"},
});
constexpr auto directions = std::to_array<Choice>({{"both", R"("txAndRx")"},
                                                   {"transmit", R"("txOnly")"},
                                                   {"receive", R"("rxOnly")"},
                                                   {"disabled", R"("disabled")"}});

// The timers' ranges are those of IEEE Std 802.1AB-2016, 9.2.5 and 10.5; the hold time is the time
// to live itself.
const auto table = std::to_array<Setting>({
    {"interval", "messageTxInterval", Number{1, 3600, "SECONDS"}, "30", "between two frames"},
    {"hold-time", "messageTxHoldTime", Number{1, 65535, "SECONDS"}, "120", "time to live sent"},
    {"reinit-delay", "reinitDelay", Number{1, 10, "SECONDS"}, "2", "rest of a stopped port"},
    {"lldp", "enabled", onOff, "on", "LLDP on all ports"},
    {"tagged-frames", "rxTaggedPacketsDrop", acceptDrop, "accept", "frames with a VLAN tag"},
    {"tlv port-description", "tlvPortDesc", onOff, "on", "send Port Description"},
    {"tlv system-name", "tlvSysName", onOff, "on", "send System Name"},
    {"tlv system-description", "tlvSysDesc", onOff, "on", "send System Description"},
    {"tlv system-capabilities", "tlvSysCap", onOff, "on", "send System Capabilities"},
    {"tlv management-address", "tlvMgmtAddr", onOff, "on", "send Management Address"},
    {"tlv port-vlan", "tlvPortVlan", onOff, "on", "send Port VLAN ID"},
    {"tlv link-aggregation", "tlvLinkAggregation", onOff, "on", "send Link Aggregation"},
    {"tlv max-frame-size", "tlvMaximumFrameSize", onOff, "on", "send Maximum Frame Size"},
    {"tlv power-via-mdi", "tlvPowerViaMdi", onOff, "on", "send Power via MDI"},
    {"tlv network-policy", "tlvNetworkPolicy", onOff, "on", "send Network Policy"},
    {"management-address", "mgmtAddrTxOption", addresses, "best", "which addresses are sent"},
    {"management-vrf", "mgmtAddrVrf", Word{100}, "default", "VRF of those addresses"},
    {"ipv6-management-interface", "ip6MgmtAddrIntfName", interfaceName, "",
     "whose IPv6 address is sent"},
    {"port PORTS status", "cliPortConfig/PORTS/adminStatus", directions, "both",
     "what these ports do with LLDP"},
    {"port PORTS power-fallback", "cliPortConfig/PORTS/poeAllocatedPowerFallback",
     Number{0, 999, "WATTS", 10}, "0", "power told where PoE tells none"},
    {"port PORTS network-policy", "cliPortConfig/PORTS/networkPolicyConfig", Policies{}, "none",
     "what phones are told"},
});

[[noreturn]] void expected(const Setting& setting, const std::string& what,
                           const std::string& got) {
   throw Misuse(fmt::format("{}: expected {}, got '{}'", setting.words, what, Rex::printable(got)));
}

// 154 tenths are 15.4, and 150 are 15.
std::string typedNumber(const Number& number, unsigned value) {
   std::string whole = std::to_string(value / number.parts);
   unsigned rest = value % number.parts;
   return rest ? fmt::format("{}.{}", whole, rest) : whole;
}

bool isName(const std::string& text, const Word& name) {
   auto visible = [](char c) { return c > ' ' && c < '\x7F'; };
   return !text.empty() && text.size() <= name.longest && std::ranges::all_of(text, visible);
}

// In the quotes that a shell wants, if it wants any.
std::string quoted(const std::string& name) {
   auto plain = [](unsigned char c) {
      return std::isalnum(c) || std::string_view("._/:@%+-").find(c) != std::string_view::npos;
   };
   if (std::ranges::all_of(name, plain)) return name;
   std::string out = "'";
   for (char c : name) out += c == '\'' ? std::string("'\\''") : std::string(1, c);
   return out + "'";
}

std::optional<std::string> typedName(const Json& value, const Word& name) {
   // A first dash would make it an option.
   bool typable = value.is_string() && isName(value.get<std::string>(), name) &&
                  !value.get<std::string>().starts_with('-');
   return typable ? std::optional(quoted(value.get<std::string>())) : std::nullopt;
}

std::optional<std::string> typedChoice(const Choice& choice, const Json& value) {
   std::string typed(choice.word);
   if (!value.is_object()) {
      return value == Json::parse(choice.value) ? std::optional(typed) : std::nullopt;
   }
   Json rest = Json::object();
   for (const auto& [field, part] : value.items()) {
      if (field == choice.nameField) {
         auto name = typedName(part, interfaceName);
         if (!name) return std::nullopt;
         typed += " " + *name;
      } else if (part != "") {
         rest[field] = part;
      }
   }
   return rest == Json::parse(choice.value) ? std::optional(typed) : std::nullopt;
}

}  // namespace

std::span<const Setting> allSettings() {
   return table;
}

std::vector<std::string> wordsOf(const Setting& setting) {
   std::istringstream in{std::string(setting.words)};
   return {std::istream_iterator<std::string>(in), {}};
}

std::string valueForm(const Setting& setting) {
   if (auto number = std::get_if<Number>(&setting.value)) return number->unit;
   if (std::holds_alternative<Word>(setting.value)) return "NAME";
   if (std::holds_alternative<Policies>(setting.value)) return "POLICIES";
   std::string form;
   for (const Choice& choice : std::get<Choices>(setting.value)) {
      form += fmt::format("{}{}{}", form.empty() ? "" : "|", choice.word,
                          choice.nameField.empty() ? "" : " NAME");
   }
   return form;
}

std::string helpText(const Setting& setting) {
   std::string text(setting.help);
   if (auto number = std::get_if<Number>(&setting.value)) {
      text += fmt::format(", {} to {}", typedNumber(*number, number->least),
                          typedNumber(*number, number->most));
   }
   bool quotes = std::holds_alternative<Word>(setting.value) && !setting.standard.empty();
   std::string_view standard = setting.standard.empty() ? "none" : setting.standard;
   return fmt::format("{0} (default {2}{1}{2})", text, standard, quotes ? "'" : "");
}

std::optional<std::string> typedValue(const Setting& setting, const Json& value) {
   if (auto number = std::get_if<Number>(&setting.value)) {
      bool typable = value.is_number_unsigned() && value.get<uint64_t>() >= number->least &&
                     value.get<uint64_t>() <= number->most;
      return typable ? std::optional(typedNumber(*number, value.get<unsigned>())) : std::nullopt;
   }
   if (std::holds_alternative<Policies>(setting.value)) return typedPolicies(value);
   if (auto name = std::get_if<Word>(&setting.value)) return typedName(value, *name);
   for (const Choice& choice : std::get<Choices>(setting.value)) {
      if (auto typed = typedChoice(choice, value)) return typed;
   }
   return std::nullopt;
}

Json numberValue(const Setting& setting, const Number& number, const std::string& word) {
   unsigned value = 0;
   unsigned rest = 0;
   const char* end = word.data() + word.size();
   auto [behind, error] = std::from_chars(word.data(), end, value);
   bool good = error == std::errc() && value <= number.most;
   // One digit behind the point, as there are no more parts than ten.
   if (good && number.parts == 10 && end - behind == 2 && *behind == '.' && std::isdigit(end[-1])) {
      rest = static_cast<unsigned>(end[-1] - '0');
      behind = end;
   }
   value = value * number.parts + rest;
   if (!good || behind != end || value < number.least || value > number.most) {
      expected(setting,
               fmt::format("a {}number from {} to {}", number.parts == 1 ? "whole " : "",
                           typedNumber(number, number.least), typedNumber(number, number.most)),
               word);
   }
   return value;
}

Json policiesValue(const Setting& setting, const std::string& word) {
   if (auto rows = readPolicies(word)) return *rows;
   expected(setting,
            fmt::format("{}, VLAN to 4094, PRIORITY to 7, DSCP to 63, APPLICATION one of {}",
                        policiesForm, applicationList()),
            word);
}

std::string nameValue(const Setting& setting, const Word& name, const std::string& word) {
   if (!isName(word, name)) {
      expected(setting, fmt::format("a name of 1 to {} visible characters", name.longest), word);
   }
   return word;
}

}  // namespace LldpCli
