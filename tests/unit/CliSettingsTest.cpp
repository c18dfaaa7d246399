// The operator's command: what can be set, and how.
#include <gmock/gmock.h>

#include "Rex/EntityType.h"
#include "cli/Failure.h"
#include "cli/PortList.h"
#include "cli/SettingWords.h"
#include "host/Settings.h"
#include "model/CliConfig.h"
#include "unit/CliFakeAgent.h"
#include "unit/CliRun.h"

namespace LldpCli {
namespace {

using testing::Contains;
using testing::HasSubstr;

std::string nameOf(const Setting& setting) {
   return std::string(setting.attribute.substr(setting.attribute.rfind('/') + 1));
}
// The value of a setting's attribute in an entity.
Json attributeIn(const Setting& setting, Rex::Entity& config, Rex::Entity& port) {
   return Rex::entityToJson(setting.ofPorts() ? port : config).at(nameOf(setting));
}

TEST(CliSettings, AreThoseOfTheAgentWithItsDefaults) {
   auto config = Rex::make<Lldp::CliConfig>();
   auto port = Rex::make<Lldp::CliPortConfig>(Wirekit::IntfId("Ethernet1"));
   for (const Setting& setting : allSettings()) {
      Json standard = attributeIn(setting, *config, *port);
      if (setting.standard.empty()) {
         EXPECT_EQ(standard, "") << setting.words;
      } else {
         EXPECT_EQ(typedValue(setting, standard), setting.standard) << setting.words;
      }
   }
   auto isKnown = [](const std::string& attribute) {
      return std::ranges::count(allSettings(), attribute, &Setting::attribute) == 1;
   };
   for (const auto& member : config->entityType().members()) {
      EXPECT_TRUE(member->name == "cliPortConfig" || isKnown(member->name)) << member->name;
   }
   for (const auto& member : port->entityType().members()) {
      bool known = member->name == "intfId" || isKnown("cliPortConfig/PORTS/" + member->name);
      EXPECT_TRUE(known) << member->name;
   }
}

// Every value that can be typed is one that the agent takes, and comes back as it was typed; a
// number beyond its range is one that the agent refuses, too.
TEST(CliSettings, EveryValueComesBackAsItWasTyped) {
   auto port = Rex::make<Lldp::CliPortConfig>(Wirekit::IntfId("Ethernet1"));
   for (const Setting& setting : allSettings()) {
      std::vector<std::string> values{"blue-1"};
      if (auto number = std::get_if<Number>(&setting.value)) {
         values = {*typedValue(setting, number->least), *typedValue(setting, number->most)};
         const auto& type = setting.ofPorts() ? port->entityType() : Lldp::CliConfig::staticType();
         for (unsigned beyond : {number->least - 1, number->most + 1}) {
            EXPECT_THROW(Host::decodeSettings(type, Json{{nameOf(setting), beyond}}),
                         Rex::JsonError);
         }
      } else if (std::holds_alternative<Policies>(setting.value)) {
         values = {"none", "voice:tagged:4094:7:63,any:untagged:0:0:0:guests"};
      } else if (auto choices = std::get_if<Choices>(&setting.value)) {
         values.clear();
         for (const Choice& choice : *choices) {
            values.push_back(std::string(choice.word) +
                             (choice.nameField.empty() ? "" : " Vlan10"));
         }
      }
      for (const std::string& value : values) {
         std::vector<std::string> words = wordsOf(setting);
         std::ranges::replace(words, std::string(Setting::ports), std::string("Ethernet1"));
         std::istringstream in(value);
         for (std::string word; in >> word;) words.push_back(word);
         auto typed = readSettings(words, true);
         ASSERT_EQ(typed.size(), 1u);
         auto config = Rex::make<Lldp::CliConfig>();
         Rex::Entity& entity = setting.ofPorts() ? static_cast<Rex::Entity&>(*port) : *config;
         Host::decodeSettings(entity.entityType(), Json{{nameOf(setting), typed[0].value}})(entity);
         EXPECT_EQ(typedValue(setting, attributeIn(setting, *config, *port)), value)
             << setting.words;
      }
   }
}

TEST(CliSettings, WordsThatAreNoneSayWhatWasExpected) {
   const std::vector<std::pair<std::string, std::string>> cases{
       {"", "no setting is named; expected one of interval, hold-time"},
       {"interval 0", "interval: expected a whole number from 1 to 3600, got '0'"},
       {"interval 3601", "from 1 to 3600, got '3601'"},
       {"hold-time 65536", "from 1 to 65535"},
       {"reinit-delay 1s", "from 1 to 10, got '1s'"},
       {"interval", "'interval' wants SECONDS"},
       {"interval 5 tlv", "wants one of port-description"},
       {"tlv colour on", "no setting 'tlv colour'; expected one of port-description"},
       {"lldp maybe", "lldp: expected one of on, off, got 'maybe'"},
       {"management-address interface", "wants NAME"},
       {"management-vrf \x1b[2J", "management-vrf: expected a name of 1 to 100 visible"},
       {"port Ethernet1 all both", "no setting 'port Ethernet1 all'; expected one of status"},
       {"port Ethernet1 power-fallback 100", "expected a number from 0 to 99.9, got '100'"},
       {"port Ethernet1 power-fallback 1.55", "got '1.55'"},
       {"port Ethernet1 network-policy voice:tagged:4095:0:0", "VLAN to 4094"},
       {"port Ethernet1 network-policy fax:tagged:1:0:0", "one of any, voice,"},
       {"port Ethernet1 network-policy any:tagged:1:0:0,any:tagged:2:0:0", "expected none, or APP"},
       {"port Ethernet01 status both", "PORTS: expected names such as Ethernet1"},
       {"port eth0 status both", "PORTS: expected names such as Ethernet1"},
       {"interval 5 bogus", "no setting 'bogus'"},
   };
   for (const auto& [line, message] : cases) {
      std::vector<std::string> words{"set"};
      std::istringstream in(line);
      for (std::string word; in >> word;) words.push_back(word);
      CliDone done = cliRun(words);
      EXPECT_EQ(done.status, 2) << line;
      EXPECT_THAT(done.err, HasSubstr(message));
      EXPECT_EQ(std::count(done.err.begin(), done.err.end(), '\n'), 1);
   }
}

TEST(CliSettings, PortLists) {
   const std::vector<std::pair<std::string, std::string>> good{
       {"Ethernet1", "Ethernet1"},
       {"Ethernet9-11", "Ethernet9 Ethernet10 Ethernet11"},
       {"Ethernet3/1-3/2,Management1", "Ethernet3/1 Ethernet3/2 Management1"},
       {"Ethernet3/1/1-2", "Ethernet3/1/1 Ethernet3/1/2"},
       {"Ethernet3/7-Ethernet3/8", "Ethernet3/7 Ethernet3/8"},
   };
   for (const auto& [list, ports] : good) {
      std::string joined;
      for (const std::string& port : portList(list)) joined += (joined.empty() ? "" : " ") + port;
      EXPECT_EQ(joined, ports);
   }
   for (const char* bad :
        {"", ",", "Ethernet", "Ethernet1,", "Ethernet4-1", "Ethernet1-", "Ethernet13/1-3/2",
         "Ethernet1/2/3/4", "Management1/2/3", "ethernet1", "Ethernet1-Management4", "Ethernet-1",
         "Ethernet1/", "Ethernet1234567", "Ethernet1-999999", "Ethernet1 ", "Ethernet1-2-3"}) {
      EXPECT_THROW(portList(bad), Misuse) << bad;
   }
}

class CliSet : public testing::Test {
 protected:
   CliDone run(std::vector<std::string> words) {
      words.insert(words.begin(), {"--socket", agent.socketPath()});
      return cliRun(words);
   }
   // What a call has the agent change, in one request.
   std::string changes(const std::vector<std::string>& words, const std::string& told = "") {
      agent.answer("POST /v1/changes", "204 No Content", "");
      agent.answer("/v1/entity/l2discovery/lldp/status/local/1?depth=0", "200 OK",
                   R"({"portStatus": {"Ethernet3/1": {}}})");
      agent.start();
      CliDone done = run(words);
      EXPECT_EQ(done.status, 0) << done.err;
      EXPECT_EQ(done.out, told);
      std::string found;
      for (const std::string& request : agent.requests()) {
         if (request.starts_with("POST")) found += request;
      }
      return found;
   }
   CliFakeAgent agent;
};

TEST_F(CliSet, SeveralSettingsAreOneRequest) {
   EXPECT_EQ(
       changes({"set", "interval", "10", "port", "Ethernet3/1-2", "status", "receive"},
               "not there yet, but set for when it comes: Ethernet3/2\n"),
       R"(POST /v1/changes {"changes":[)"
       R"({"method":"PATCH","path":"l2discovery/lldp/cliConfig","body":{"messageTxInterval":10}},)"
       R"({"method":"PUT","path":"l2discovery/lldp/cliConfig/cliPortConfig/Ethernet3%2F1","body":{"adminStatus":"rxOnly"}},)"
       R"({"method":"PUT","path":"l2discovery/lldp/cliConfig/cliPortConfig/Ethernet3%2F2","body":{"adminStatus":"rxOnly"}}]})");
}

TEST_F(CliSet, AllTlvsAtOnce) {
   Json sent = Json::parse(changes({"set", "tlv", "all", "off"}).substr(17));
   EXPECT_EQ(sent.at("changes").size(), 10u);
   EXPECT_EQ(sent.at("changes").at(9).at("body"), Json::parse(R"({"tlvNetworkPolicy": false})"));
}

TEST_F(CliSet, UnsetPassesOverPortsThatHaveNoRow) {
   const std::string row = "l2discovery/lldp/cliConfig/cliPortConfig/Ethernet2";
   agent.answer("/v1/entity/" + row, "200 OK", "{}");
   EXPECT_EQ(changes({"unset", "interval", "port", "Ethernet1-2", "status"}),
             R"(POST /v1/changes {"changes":[)"
             R"({"method":"DELETE","path":"l2discovery/lldp/cliConfig/messageTxInterval"},)"
             R"({"method":"DELETE","path":")" +
                 row + R"(/adminStatus"}]})");
}

TEST_F(CliSet, TheAgentsRefusalNamesTheSetting) {
   agent.answer("POST /v1/changes", "400 Bad Request",
                R"({"error": {"path": "x", "field": "cliPortConfig", "message": "no room",
                    "change": 1}})");
   agent.start();
   CliDone done = run({"set", "interval", "5", "port", "Ethernet1", "status", "both"});
   EXPECT_EQ(done.status, 1);
   EXPECT_EQ(done.err,
             "lldp: 'port Ethernet1 status both': the agent refuses /v1/changes: no room (400); "
             "nothing was changed\n");
}

TEST_F(CliSet, ShowConfigCanBePastedBack) {
   agent.answer("/v1/config", "200 OK", R"({"l2discovery/lldp/cliConfig": {
      "messageTxInterval": 10, "messageTxHoldTime": 0, "enabled": false, "future": [1, "\u202e"],
      "mgmtAddrTxOption": {"mgmtAddrTxMode": "mgmtAddrTxModeIntfName", "intfName": "a;b"},
      "mgmtAddrVrf": "it's", "ip6MgmtAddrIntfName": "-x",
      "cliPortConfig": {"Ethernet10": {"adminStatus": "rxOnly"}, "Ethernet3": {},
         "Ethernet2": {"adminStatus": "disabled", "poeAllocatedPowerFallback": 154}}},
      "other/path": {"x": 1}})");
   agent.start();
   EXPECT_EQ(run({"show", "config"}).out,
             "lldp set interval 10\n"
             "# l2discovery/lldp/cliConfig/messageTxHoldTime: 0\n"
             "lldp set lldp off\n"
             "# l2discovery/lldp/cliConfig/future: [1,\"\\u202e\"]\n"
             "lldp set management-address interface 'a;b'\n"
             "lldp set management-vrf 'it'\\''s'\n"
             "# l2discovery/lldp/cliConfig/ip6MgmtAddrIntfName: \"-x\"\n"
             "lldp set port Ethernet2 status disabled\n"
             "lldp set port Ethernet2 power-fallback 15.4\n"
             "lldp set port Ethernet10 status receive\n"
             "# other/path: {\"x\":1}\n");
}

// Where one becomes active the other steps back first, in the same request.
TEST_F(CliSet, RedundancyOfEitherSupervisor) {
   const std::string active = R"("protocol":"protocolHotStandby","mode":"modeActive")";
   const std::string standby = R"("protocol":"protocolHotStandby","mode":"modeStandby")";
   const std::string none = R"("protocol":"protocolNone","mode":"modeUnknown")";
   agent.answer("/v1/entity/cell/1/redundancy/status?depth=0", "200 OK", "{" + active + "}");
   agent.answerOnce("/v1/entity/cell/2/redundancy/status?depth=0", "200 OK", "{" + standby + "}");
   agent.answer("/v1/entity/cell/2/redundancy/status?depth=0", "200 OK", "{" + none + "}");
   agent.answer("POST /v1/changes", "204 No Content", "");
   agent.start();
   auto change = [](const std::string& cell, const std::string& body) {
      return R"({"method":"PATCH","path":"cell/)" + cell + R"(/redundancy/status","body":{)" +
             body + "}}";
   };
   const std::vector<std::pair<std::vector<std::string>, std::string>> sent{
       {{"active"}, change("1", active)},
       {{"active"}, change("2", standby) + "," + change("1", active)},
       {{"2", "active"}, change("1", standby) + "," + change("2", active)},
       {{"2", "standby"}, change("2", standby)},
       {{"1", "none"}, change("1", none)},
   };
   for (auto [words, changes] : sent) {
      words.insert(words.begin(), {"debug", "redundancy"});
      EXPECT_EQ(run(words).status, 0);
      EXPECT_EQ(agent.requests().back(), "POST /v1/changes {\"changes\":[" + changes + "]}");
   }
   EXPECT_EQ(run({"debug", "redundancy"}).out,
             "Cell  Protocol            Mode\n   1  protocolHotStandby  modeActive\n"
             "   2  protocolNone        modeUnknown\n");
   EXPECT_EQ(run({"debug", "redundancy", "3", "active"}).status, 2);
   EXPECT_THAT(run({"debug", "redundancy", "2"}).err, HasSubstr("ROLE: expected active, standby"));
}

TEST_F(CliSet, ClearSaveAndTrace) {
   agent.answer("/v1/config", "200 OK",
                R"({"l2discovery/lldp/cliConfig": {"cliPortConfig": {"Ethernet1": {}}}})");
   const std::string status = "/v1/entity/l2discovery/lldp/status/local/1";
   const std::string port = status + "/portStatus/Ethernet1?depth=0";
   agent.answer(status + "?depth=0", "200 OK", R"({"portStatus": {"Ethernet1": {}}})");
   agent.answerOnce(port, "200 OK", R"({"remoteSystem": {"1": {}, "2": {}}})");
   agent.answer(port, "200 OK", R"({"remoteSystem": {}})");
   agent.answer("PATCH /v1/entity/l2discovery/lldp/remTablesCliConfig", "204 No Content", "");
   agent.answer("POST /v1/config/save", "200 OK", R"({"file": "/etc/lldp\u001b.json"})");
   agent.answer("/v1/agent/trace", "200 OK", R"({"LldpAgent": [], "LldpProtocol": [0, 4]})");
   agent.answer("PATCH /v1/agent/trace", "204 No Content", "");
   agent.start();
   EXPECT_EQ(run({"show", "config"}).out, "# everything has its default\n");
   EXPECT_EQ(run({"clear", "neighbors"}).out, "2 neighbors cleared\n");
   EXPECT_THAT(agent.requests(),
               Contains(HasSubstr(R"({"requesterName":"admin","requesterLine":"pts/3"})")));
   EXPECT_EQ(run({"config", "save"}).out, "saved to /etc/lldp\\x1b.json\n");
   EXPECT_EQ(agent.requests().back(), "POST /v1/config/save");
   EXPECT_EQ(run({"trace"}).out, "Facility      Levels\nLldpAgent     off\nLldpProtocol  0,4\n");
   EXPECT_THAT(run({"trace", "Nobody"}).err, HasSubstr("there are LldpAgent, LldpProtocol"));
   const std::vector<std::pair<const char*, const char*>> levels{
       {"0,4-6", "[0,4,5,6]"}, {"off", "[]"}, {"all", "[0,1,2,3,4,5,6,7,8,9]"}};
   for (const auto& [typed, sent] : levels) {
      EXPECT_EQ(run({"trace", "LldpAgent", typed}).status, 0);
      EXPECT_EQ(agent.requests().back(),
                std::string(R"(PATCH /v1/agent/trace {"LldpAgent":)") + sent + "}");
   }
   // With --json every answer is an object, also that there is nothing to tell.
   agent.answer("POST /v1/changes", "204 No Content", "");
   const std::vector<std::pair<std::vector<std::string>, const char*>> answers{
       {{"clear", "neighbors", "--json"}, R"({"cleared":0})"},
       {{"config", "save", "--json"}, R"({"file":"/etc/lldp\u001b.json"})"},
       {{"trace", "--json"}, R"({"trace":{"LldpAgent":[],"LldpProtocol":[0,4]}})"},
       {{"trace", "LldpAgent", "--json"}, R"({"trace":{"LldpAgent":[]}})"},
       {{"trace", "LldpAgent", "off", "--json"}, "{}"},
       {{"set", "interval", "5", "--json"}, "{}"},
       {{"unset", "interval", "--json"}, "{}"},
   };
   for (const auto& [words, said] : answers) {
      EXPECT_EQ(Json::parse(run(words).out).dump(-1, ' ', true), said) << words[0];
   }
   for (const char* bad : {"10", "4-2", "a", "1,", ",", "1-", ""}) {
      EXPECT_EQ(run({"trace", "LldpAgent", bad}).status, 2) << bad;
   }
}

}  // namespace
}  // namespace LldpCli
