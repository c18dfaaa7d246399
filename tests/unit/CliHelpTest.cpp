// The operator's command: help, the manual page and the completion of words.
#include <gmock/gmock.h>

#include <regex>

#include "cli/Settings.h"
#include "cli/Width.h"
#include "unit/CliFakeAgent.h"
#include "unit/CliRun.h"

namespace {

using testing::HasSubstr;

std::vector<std::string> lines(const std::string& text) {
   std::vector<std::string> found;
   std::istringstream in(text);
   for (std::string line; std::getline(in, line);) found.push_back(line);
   return found;
}

// Words after a name that stands first in an indented line, as --help lists commands and options.
std::vector<std::string> listed(const std::string& help) {
   std::vector<std::string> names;
   for (const std::string& line : lines(help)) {
      std::smatch match;
      if (line == "Settings:" || line == "Examples:") break;
      if (std::regex_search(line, match, std::regex("^  (-h,)?([-a-zA-Z]+)"))) {
         names.push_back(match[2]);
      }
   }
   return names;
}

TEST(CliHelp, FitsATerminal) {
   for (const std::string& text : LldpCli::allHelp()) {
      for (const std::string& line : lines(text)) {
         EXPECT_LE(LldpCli::displayWidth(line), 80u) << line;
      }
   }
}

TEST(CliHelp, TheManualPageHasEveryCommandAndOption) {
   std::string page = cliRun({"man"}).out;
   std::string plain = std::regex_replace(page, std::regex(R"(\\-)"), "-");
   std::vector<std::string> all = LldpCli::allHelp();
   EXPECT_GT(all.size(), 15u);
   for (const std::string& text : all) {
      for (const std::string& name : listed(text)) EXPECT_THAT(plain, HasSubstr(name)) << text;
   }
   for (const LldpCli::Setting& setting : LldpCli::allSettings()) {
      EXPECT_THAT(plain, HasSubstr("\n.B " + std::string(setting.words) + " "));
   }
}

TEST(CliHelp, TheManualPageIsSoundRoff) {
   const std::regex request(R"(^\.(TH LLDP 1 .*|S[HS] \S.*|PP|TP|B \S.*)$)");
   const std::regex escapes(R"(\\(e|-|&|\(aq|\(dq|f[IR]))");
   bool entry = false;  // behind .TP there is a .B, and then words
   for (const std::string& line : lines(cliRun({"man"}).out)) {
      EXPECT_FALSE(line.empty());
      EXPECT_EQ(std::regex_replace(line, escapes, "").find('\\'), std::string::npos) << line;
      EXPECT_TRUE(line[0] != '.' || std::regex_match(line, request)) << line;
      EXPECT_NE(line[0], '\'');
      EXPECT_TRUE(!entry || line.starts_with(".B ")) << line;
      entry = line == ".TP";
   }
   EXPECT_FALSE(entry);
}

TEST(CliStore, StandsInsteadOfASocket) {
   CliDone both = cliRun({"show", "config", "--socket", "a", "--store", "unix:/s"});
   EXPECT_EQ(both.status, 2);
   EXPECT_THAT(both.err, HasSubstr("--socket"));
   for (const auto& words : std::vector<std::vector<std::string>>{{"config", "save"}, {"trace"}}) {
      std::ostringstream out;
      std::ostringstream err;
      LldpCli::Session session{out};
      session.store.url = "unix:/of/the/environment";
      EXPECT_EQ(LldpCli::runCommandLine(words, session, err), 1) << "nothing is started";
      EXPECT_THAT(err.str(), HasSubstr("one agent"));
      err.str("");
      auto named = words;
      named.insert(named.begin(), {"--socket", "no.sock"});
      EXPECT_EQ(LldpCli::runCommandLine(named, session, err), 1);
      EXPECT_THAT(err.str(), HasSubstr("no agent answers at no.sock"));
   }
}

class CliCompletion : public testing::Test {
 protected:
   CliCompletion() {
      agent.answer("/v1/entity/l2discovery/lldp/status/local/1?depth=0", "200 OK",
                   R"({"portStatus": {"Ethernet10": {}, "Ethernet2": {}, "Ether\u001bnet": {}}})");
      agent.answer("/v1/agent/trace", "200 OK", R"({"LldpAgent": []})");
      agent.start();
   }
   std::vector<std::string> complete(std::vector<std::string> words) {
      words.insert(words.begin(), {"__complete", "--socket", agent.socketPath()});
      CliDone done = cliRun(words);
      EXPECT_EQ(done.status, 0);
      EXPECT_EQ(done.err, "");
      return lines(done.out);
   }
   CliFakeAgent agent;
};

TEST_F(CliCompletion, OffersWhatMayFollow) {
   using Words = std::vector<std::string>;
   const std::vector<std::pair<Words, Words>> cases{
       {{"s"}, {"show", "set"}},
       {{"show", "n"}, {"neighbors"}},
       {{"show", "neighbors", ""}, {"detail", "Ethernet2", "Ethernet10"}},
       {{"show", "neighbors", "Ethernet2", ""}, {"detail"}},
       {{"show", "neighbors", "--"},
        {"--help", "--json", "--socket", "--store", "--store-password-file"}},
       {{"watch", "--standing", "Ethernet1"}, {"Ethernet10"}},
       {{"set", "int"}, {"interval"}},
       {{"set", "interval", ""}, {}},
       {{"set", "interval", "5", "l"}, {"lldp"}},
       {{"set", "tlv", "s"}, {"system-name", "system-description", "system-capabilities"}},
       {{"set", "tlv", "all", ""}, {"on", "off"}},
       {{"set", "port", "Ethernet7,"}, {"Ethernet7,Ethernet2", "Ethernet7,Ethernet10"}},
       {{"set", "port", "Ethernet1", ""}, {"status", "power-fallback", "network-policy"}},
       {{"set", "port", "Ethernet1", "status", "d"}, {"disabled"}},
       {{"set", "management-address", "i"}, {"interface"}},
       {{"set", "bogus", ""}, {}},
       {{"unset", "tlv", "a"}, {"all"}},
       {{"unset", "interval", "hold"}, {"hold-time"}},
       {{"trace", ""}, {"LldpAgent"}},
       {{"trace", "LldpAgent", "o"}, {"off"}},
       {{"completion", ""}, {"bash", "fish", "zsh"}},
       {{"debug", "redundancy", ""}, {"active", "standby", "none", "1", "2"}},
       {{"debug", "redundancy", "2", "st"}, {"standby"}},
       {{"show", "local", "--socket", ""}, {}},
       {{"show", "--store", "unix:/s", "lo"}, {"local"}},
       {{"nonsense", ""}, complete({""})},
   };
   for (const auto& [words, found] : cases) {
      EXPECT_EQ(complete(words), found) << testing::PrintToString(words);
   }
}

TEST(CliCompletionAlone, WithoutAnAgentThereAreStillWords) {
   CliFakeAgent nobody;
   std::vector<std::string> words{"__complete", "--socket",  nobody.socketPath(),
                                  "show",       "neighbors", ""};
   EXPECT_EQ(cliRun(words).out, "detail\n");
   EXPECT_EQ(cliRun({"__complete"}).status, 0);
   EXPECT_EQ(cliRun({"completion", "tcsh"}).status, 2);
   for (const char* shell : {"bash", "zsh", "fish"}) {
      EXPECT_THAT(cliRun({"completion", shell}).out, HasSubstr("__complete"));
   }
}

}  // namespace
