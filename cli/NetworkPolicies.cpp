#include "cli/NetworkPolicies.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <sstream>
#include <vector>

#include "cli/Applications.h"

namespace LldpCli {
namespace {

constexpr const char* none = "none";
constexpr const char* usualName = "default";

// The applications' names as words, by their numbers; 0 is for those without a policy of their own.
const std::vector<std::string>& applications() {
   static const std::vector<std::string> words = [] {
      std::vector<std::string> made{"any"};
      for (const Name& name : applicationNames) {
         std::ranges::replace(made.emplace_back(name.name), ' ', '-');
      }
      return made;
   }();
   return words;
}

struct Field {
   const char* name;
   unsigned most;
};
constexpr auto numbers = std::to_array<Field>({{"vlanId", 4094}, {"l2Priority", 7}, {"dscp", 63}});
constexpr size_t firstNumber = 2;
constexpr size_t nameAt = firstNumber + numbers.size();

std::vector<std::string> split(const std::string& text, char at) {
   std::vector<std::string> parts;
   std::istringstream in(text);
   for (std::string part; std::getline(in, part, at);) parts.push_back(part);
   if (text.ends_with(at)) parts.emplace_back();
   return parts;
}

std::optional<unsigned> numberIn(const std::string& text, unsigned most) {
   unsigned number = 0;
   auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
   bool good = error == std::errc() && end == text.data() + text.size() && number <= most;
   return good ? std::optional(number) : std::nullopt;
}

bool isName(const std::string& text) {
   auto plain = [](unsigned char c) { return std::isalnum(c) || c == '-' || c == '_' || c == '.'; };
   return !text.empty() && text.size() <= 64 && std::ranges::all_of(text, plain);
}

std::optional<Json> readPolicy(const std::string& text) {
   std::vector<std::string> parts = split(text, ':');
   if (parts.size() != nameAt && parts.size() != nameAt + 1) return std::nullopt;
   auto application = std::ranges::find(applications(), parts[0]);
   bool tagged = parts[1] == "tagged";
   if (application == applications().end() || (!tagged && parts[1] != "untagged")) {
      return std::nullopt;
   }
   std::string name = parts.size() > nameAt ? parts[nameAt] : usualName;
   if (!isName(name)) return std::nullopt;
   Json row{
       {"appType", application - applications().begin()}, {"policyName", name}, {"tagged", tagged}};
   for (size_t i = 0; i < numbers.size(); ++i) {
      auto number = numberIn(parts[firstNumber + i], numbers[i].most);
      if (!number) return std::nullopt;
      row[numbers[i].name] = *number;
   }
   return row;
}

std::string typedPolicy(const Json& row) {
   std::string typed = fmt::format("{}:{}", applications().at(row.at("appType").get<size_t>()),
                                   row.at("tagged").get<bool>() ? "tagged" : "untagged");
   for (const Field& field : numbers) {
      typed += fmt::format(":{}", row.at(field.name).get<unsigned>());
   }
   std::string name = row.at("policyName");
   return name == usualName ? typed : typed + ":" + name;
}

}  // namespace

std::optional<Json> readPolicies(const std::string& word) {
   Json rows = Json::array();
   if (word == none) return rows;
   for (const std::string& part : split(word, ',')) {
      auto row = readPolicy(part);
      auto same = [&](const Json& other) { return other.at("appType") == row->at("appType"); };
      if (!row || std::ranges::any_of(rows, same)) return std::nullopt;
      rows.push_back(*row);
   }
   return rows.empty() ? std::nullopt : std::optional(rows);
}

std::optional<std::string> typedPolicies(const Json& rows) {
   if (!rows.is_array()) return std::nullopt;
   std::string typed;
   try {
      for (const Json& row : rows) typed += (typed.empty() ? "" : ",") + typedPolicy(row);
   } catch (const std::exception&) {
      return std::nullopt;
   }
   // What cannot be typed is found out by reading it back.
   if (typed.empty()) typed = none;
   auto back = readPolicies(typed);
   return back && back->size() == rows.size() ? std::optional(typed) : std::nullopt;
}

std::string applicationList() {
   return fmt::format("{}", fmt::join(applications(), ", "));
}

}  // namespace LldpCli
