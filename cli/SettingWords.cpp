#include "cli/SettingWords.h"

#include <fmt/format.h>

#include <algorithm>
#include <optional>

#include "Rex/Printable.h"
#include "cli/Failure.h"
#include "cli/PortList.h"

namespace LldpCli {
namespace {

// Stands for the last word of every setting that has the same first one.
constexpr const char* all = "all";

std::string joined(const std::vector<std::string>& words, const char* between) {
   return fmt::format("{}", fmt::join(words, between));
}

void addOnce(std::vector<std::string>& words, const std::string& word) {
   if (std::ranges::find(words, word) == words.end()) words.push_back(word);
}

bool stepFits(const std::string& step, size_t at, const std::string& word) {
   if (step == Setting::ports) return true;
   return step == word || (at == 1 && word == all);
}

class Reader {
 public:
   Reader(const std::vector<std::string>& words, bool withValues)
       : words_(words), withValues_(withValues) {}

   // Up to the end of the words, which may be in the middle of a setting.
   void run() {
      do {
         begin_ = at_;
         readOne();
      } while (!ended_);
   }
   bool inside() const { return begin_ < words_.size(); }
   const std::vector<std::string>& next() const { return next_; }
   std::vector<Typed> take() { return std::move(typed_); }

 private:
   // The next word; none at the end, where `choices` may follow.
   std::optional<std::string> word(std::vector<std::string> choices) {
      if (at_ < words_.size()) return words_[at_++];
      next_ = std::move(choices);
      ended_ = true;
      return std::nullopt;
   }

   [[noreturn]] void unknown(const std::vector<std::string>& choices) const {
      std::vector<std::string> typed(words_.begin() + static_cast<std::ptrdiff_t>(begin_),
                                     words_.begin() + static_cast<std::ptrdiff_t>(at_));
      throw Misuse(fmt::format("no setting '{}'; expected one of {}",
                               Rex::printable(joined(typed, " ")), joined(choices, ", ")));
   }

   // Those of `from` that go on with the word at a place.
   static std::vector<std::string> choicesAt(const std::vector<const Setting*>& from, size_t at) {
      std::vector<std::string> choices;
      for (const Setting* setting : from) addOnce(choices, wordsOf(*setting)[at]);
      if (at == 1 && choices.size() > 1) choices.push_back(all);
      return choices;
   }

   void readOne() {
      std::vector<const Setting*> fitting;
      for (const Setting& setting : allSettings()) fitting.push_back(&setting);
      std::vector<std::string> ports;
      for (size_t at = 0; at == 0 || wordsOf(*fitting[0]).size() > at; ++at) {
         std::vector<std::string> choices = choicesAt(fitting, at);
         auto typed = word(choices);
         if (!typed) return;
         std::erase_if(fitting, [&](const Setting* setting) {
            return !stepFits(wordsOf(*setting)[at], at, *typed);
         });
         if (fitting.empty()) unknown(choices);
         if (choices[0] == Setting::ports) ports = portList(*typed);
      }
      Json value;
      if (withValues_ && !readValue(*fitting[0], value)) return;
      std::string said = joined({words_.begin() + static_cast<std::ptrdiff_t>(begin_),
                                 words_.begin() + static_cast<std::ptrdiff_t>(at_)},
                                " ");
      for (const Setting* setting : fitting) typed_.push_back({setting, ports, value, said});
   }

   // False at the end of the words.
   bool readValue(const Setting& setting, Json& value) {
      if (auto choices = std::get_if<Choices>(&setting.value)) {
         return readChoice(setting, *choices, value);
      }
      auto typed = word({valueForm(setting)});
      if (!typed) return false;
      if (auto number = std::get_if<Number>(&setting.value)) {
         value = numberValue(setting, *number, *typed);
      } else if (std::holds_alternative<Policies>(setting.value)) {
         value = policiesValue(setting, *typed);
      } else {
         value = nameValue(setting, std::get<Word>(setting.value), *typed);
      }
      return true;
   }

   bool readChoice(const Setting& setting, Choices choices, Json& value) {
      std::vector<std::string> known;
      for (const Choice& choice : choices) known.emplace_back(choice.word);
      auto typed = word(known);
      if (!typed) return false;
      auto choice = std::ranges::find(choices, *typed, &Choice::word);
      if (choice == choices.end()) {
         throw Misuse(fmt::format("{}: expected one of {}, got '{}'", setting.words,
                                  joined(known, ", "), Rex::printable(*typed)));
      }
      value = Json::parse(choice->value);
      if (choice->nameField.empty()) return true;
      auto name = word({"NAME"});
      if (!name) return false;
      value[std::string(choice->nameField)] = nameValue(setting, interfaceName, *name);
      return true;
   }

   const std::vector<std::string>& words_;
   const bool withValues_;
   size_t begin_ = 0;  // of the present setting
   size_t at_ = 0;
   bool ended_ = false;
   std::vector<std::string> next_;
   std::vector<Typed> typed_;
};

}  // namespace

std::vector<Typed> readSettings(const std::vector<std::string>& words, bool withValues) {
   Reader reader(words, withValues);
   reader.run();
   if (words.empty()) {
      throw Misuse("no setting is named; expected one of " + joined(reader.next(), ", "));
   }
   if (reader.inside()) {
      throw Misuse(fmt::format("'{}' wants {}{}", Rex::printable(joined(words, " ")),
                               reader.next().size() > 1 ? "one of " : "",
                               joined(reader.next(), ", ")));
   }
   return reader.take();
}

std::vector<std::string> nextWords(const std::vector<std::string>& words, bool withValues) {
   Reader reader(words, withValues);
   try {
      reader.run();
   } catch (const Misuse&) {
      return {};
   }
   return reader.next();
}

}  // namespace LldpCli
