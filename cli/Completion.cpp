#include "cli/Completion.h"

#include <fmt/format.h>

#include <CLI/CLI.hpp>

#include "Rex/Printable.h"
#include "cli/Agent.h"
#include "cli/DebugRedundancy.h"
#include "cli/Failure.h"
#include "cli/SettingWords.h"

namespace LldpCli {
namespace {

using Words = std::vector<std::string>;

constexpr const char* bashScript = R"SH(# lldp completion bash >/etc/bash_completion.d/lldp
_lldp() {
   local word
   COMPREPLY=()
   while IFS= read -r word; do
      COMPREPLY+=("$word")
   done < <("${COMP_WORDS[0]}" __complete "${COMP_WORDS[@]:1:COMP_CWORD}" 2>/dev/null)
}
complete -F _lldp lldp
)SH";

constexpr const char* zshScript = R"SH(#compdef lldp
# lldp completion zsh >"${fpath[1]}/_lldp"
_lldp() {
   local -a found
   found=("${(@f)$("${words[1]}" __complete "${(@)words[2,CURRENT]}" 2>/dev/null)}")
   compadd -- $found
}
if [ "$funcstack[1]" = _lldp ]; then
   _lldp
else
   compdef _lldp lldp
fi
)SH";

constexpr const char* fishScript = R"SH(# lldp completion fish >~/.config/fish/completions/lldp.fish
function __lldp_words
   set -l words (commandline -opc)
   $words[1] __complete $words[2..-1] (commandline -ct) 2>/dev/null
end
complete -c lldp -f -a '(__lldp_words)'
)SH";

const std::map<std::string, const char*> scripts{
    {"bash", bashScript}, {"zsh", zshScript}, {"fish", fishScript}};

Words shells() {
   Words names;
   for (const auto& [name, script] : scripts) names.push_back(name);
   return names;
}

// The agent's words, or none when it does not answer at once: a shell is waiting.
template <class Ask>
Words fromAgent(Session& session, Ask ask) {
   session.patience.answer = std::chrono::seconds(1);
   try {
      return ask();
   } catch (const Failure&) {
      return {};
   } catch (const Json::exception&) {
      return {};
   }
}

Words ports(Session& session) {
   return fromAgent(session, [&] { return Agent(session).portNames(); });
}

Words facilities(Session& session) {
   return fromAgent(session, [&] {
      Words names;
      Json trace = Client(agentSocket(session), session.patience).get("/v1/agent/trace");
      for (const auto& [name, levels] : trace.items()) names.push_back(name);
      return names;
   });
}

// The last port of a list, behind those that are there.
Words portsBehind(const std::string& list, Session& session) {
   std::string before = list.substr(0, list.rfind(',') + 1);
   Words names;
   for (const std::string& port : ports(session)) names.push_back(before + port);
   return names;
}

// The command that words lead to, the arguments behind it, and the word that is being typed.
struct Place {
   const CLI::App* command;
   Words arguments;
   std::string word;
   bool ofOption = false;  // the word is an option's value
};

// Which of the options an option's value tells where the agent is.
std::string* placeNamed(const std::string& option, Session& session) {
   return option == "--socket"                ? &session.socketPath
          : option == "--store"               ? &session.store.url
          : option == "--store-password-file" ? &session.store.passwordFile
                                              : nullptr;
}

Place placeOf(const CLI::App& app, const Words& words, Session& session) {
   Place place{&app, {}, words.empty() ? "" : words.back()};
   for (size_t i = 0; i + 1 < words.size(); ++i) {
      const std::string& word = words[i];
      if (std::string* value = placeNamed(word, session)) {
         place.ofOption = ++i + 1 == words.size();
         if (!place.ofOption) *value = words[i];
      } else if (!word.starts_with('-')) {
         auto below = place.command->get_subcommands(
             [&word](const CLI::App* command) { return command->get_name() == word; });
         if (below.empty()) {
            place.arguments.push_back(word);
         } else {
            place.command = below[0];
            place.arguments.clear();
         }
      }
   }
   return place;
}

Words optionWords(const CLI::App* app) {
   Words names;
   for (; app; app = app->get_parent()) {
      for (const CLI::Option* option : app->get_options()) {
         for (const std::string& name : option->get_lnames()) names.push_back("--" + name);
      }
   }
   std::sort(names.begin(), names.end());
   names.erase(std::unique(names.begin(), names.end()), names.end());
   return names;
}

std::vector<const CLI::Option*> positionals(const CLI::App& command) {
   return command.get_options([](const CLI::Option* option) { return option->get_positional(); });
}

// Whether the last argument of a command may be many words.
bool takesMany(const std::vector<const CLI::Option*>& arguments) {
   return !arguments.empty() && arguments.back()->get_expected_max() > 1;
}

// The commands below this one that may follow: where the arguments go on, none behind the first.
Words commandWords(const Place& place) {
   Words names;
   if (!place.arguments.empty() && takesMany(positionals(*place.command))) return names;
   for (const CLI::App* command : place.command->get_subcommands({})) {
      names.push_back(command->get_name());
   }
   return names;
}

Words argumentWords(const Place& place, Session& session) {
   auto all = positionals(*place.command);
   if (all.empty()) return {};
   if (place.arguments.size() >= all.size() && !takesMany(all)) return {};
   std::string name = all[std::min(place.arguments.size(), all.size() - 1)]->get_name(true);
   if (name == "PORT") return ports(session);
   if (name == "FACILITY") return facilities(session);
   if (name == "LEVELS") return {"all", "off"};
   if (name == "SHELL") return shells();
   if (name == "PHONE") return {"yes", "no"};
   if (name == "ROLE") return nextRoleWords(place.arguments);
   if (name != "SETTING") return {};
   Words next = nextWords(place.arguments, place.command->get_name() == "set");
   return next == Words{std::string(Setting::ports)} ? portsBehind(place.word, session) : next;
}

// NAME, SECONDS and the like stand for what only the operator knows.
bool isWord(const std::string& word) {
   return !std::ranges::all_of(word, [](unsigned char c) { return std::isupper(c) != 0; });
}

}  // namespace

Words completions(const CLI::App& app, const Words& words, Session& session) {
   Place place = placeOf(app, words, session);
   if (place.ofOption) return {};
   Words found;
   if (place.word.starts_with('-')) {
      found = optionWords(place.command);
   } else {
      found = commandWords(place);
      for (const std::string& word : argumentWords(place, session)) found.push_back(word);
   }
   std::erase_if(found, [&](const std::string& word) {
      return !word.starts_with(place.word) || !isWord(word) || Rex::printable(word) != word;
   });
   return found;
}

void addCompletion(CLI::App& app, Session& session) {
   auto shell = std::make_shared<std::string>();
   CLI::App* command = app.add_subcommand("completion", "a shell's script that completes words");
   command->fallthrough();
   command->add_option("SHELL", *shell, fmt::format("{}", fmt::join(shells(), ", ")))
       ->required()
       ->check(CLI::IsMember(shells()));
   command->callback([shell, &session] { session.out << scripts.at(*shell); });
}

}  // namespace LldpCli
