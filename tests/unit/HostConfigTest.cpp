// The operator's configuration as a whole: what differs from the defaults, and the file of it.
#include <gmock/gmock.h>
#include <sys/stat.h>
#include <unistd.h>

#include <fstream>

#include "Foreign/NbrClassification.h"
#include "host/ApiConfig.h"
#include "host/StartError.h"
#include "support/Refusal.h"
#include "unit/HostFeedersFolder.h"
#include "unit/HostStore.h"

using namespace testing;

namespace {

const char* const wholeFile = R"({
   // Comments are for people.
   "l2discovery/lldp/cliConfig": {
      "messageTxInterval": 10,
      "mgmtAddrTxOption": {"mgmtAddrTxMode": "mgmtAddrTxModeAll"},
      "cliPortConfig": {
         "Ethernet3/1": {
            "adminStatus": "rxOnly",
            "networkPolicyConfig": [{"appType": 1, "vlanId": 7}]
         },
         "Ethernet4": {} /* a row of defaults */
      }
   },
   "identity/nbrClassification/cliConfig": {
      "neighbor": [{"ethAddr": "02:00:00:00:00:01", "classification": {"flags": 1}}]
   }
}
)";

struct HostConfig : Test {
   HostTest::Store store;
   Host::OperatorConfig config{store.manager};
   Host::TestFolder folder;
   const std::string file = folder.path + "/config.json";

   std::string differences() { return config.differences().dump(); }
   void write(const std::string& text) { std::ofstream(file) << text; }
   std::string read() {
      std::ostringstream text;
      text << std::ifstream(file).rdbuf();
      return text.str();
   }
   // What is wrong with a file of that text; empty when nothing is.
   std::string fault(const std::string& text) {
      return LldpTest::refusal<Host::StartError>(
          [&] { Host::ConfigFile::decode(text, "name", config); });
   }
};

TEST_F(HostConfig, NamesWhatDiffersFromTheDefaults) {
   EXPECT_EQ(differences(), "{}");
   auto cli = store.cliConfig();
   cli->messageTxIntervalIs(10);
   cli->cliPortConfigIs(Wirekit::IntfId("Ethernet1"))->adminStatusIs(Lldp::AdminStatus::rxOnly);
   EXPECT_EQ(differences(), R"({"l2discovery/lldp/cliConfig":{"messageTxInterval":10,)"
                            R"("cliPortConfig":{"Ethernet1":{"adminStatus":"rxOnly"}}}})");
   cli->messageTxIntervalIs(30);
   cli->cliPortConfig(Wirekit::IntfId("Ethernet1"))->adminStatusIs(Lldp::AdminStatus::txAndRx);
   EXPECT_EQ(differences(), R"({"l2discovery/lldp/cliConfig":{"cliPortConfig":{"Ethernet1":{}}}})")
       << "the row stands";
   cli->cliPortConfigDel(Wirekit::IntfId("Ethernet1"));
   EXPECT_EQ(differences(), "{}");
}

TEST_F(HostConfig, WhatIsSavedLoadsToTheSame) {
   write(wholeFile);
   Host::ConfigFile(file, true).load(config);
   EXPECT_EQ(store.cliConfig()->messageTxInterval(), 10u);
   EXPECT_EQ(store.cliConfig()->messageTxHoldTime(), 120u);
   EXPECT_TRUE(store.cliConfig()->cliPortConfigHas(Wirekit::IntfId("Ethernet4")));
   store.cliConfig()->mgmtAddrVrfIs(L3::VrfName("\xff\n\"", 3));
   auto phones =
       store.at<Identity::NbrClassification::CliConfig>("identity/nbrClassification/cliConfig");
   EXPECT_EQ(phones->neighbor({2, 0, 0, 0, 0, 1}).classification.flags, 1u);
   const std::string before = differences();
   phones->clearRequestIs("1", {1, "admin", "vty1"});
   EXPECT_EQ(differences(), before) << "a request is no configuration";
   Host::ConfigFile(file, true).save(config);

   HostTest::Store again;
   Host::OperatorConfig loaded(again.manager);
   Host::ConfigFile(file, true).load(loaded);
   EXPECT_EQ(loaded.differences().dump(), before);
   EXPECT_EQ(entityToJson(*again.cliConfig()), entityToJson(*store.cliConfig()));
}

TEST_F(HostConfig, AFaultIsNamedWithItsLineAndChangesNothing) {
   const std::string head = "{\n \"l2discovery/lldp/cliConfig\": {\n  \"tlvSysCap\": false,\n";
   const std::string cli = "l2discovery/lldp/cliConfig";
   struct Case {
      std::string text;
      std::string fault;
   };
   const Case cases[] = {
       {"", "name:1: syntax error while parsing value - unexpected end of input"},
       {"[]", "name:1: expected an object by path"},
       {head + "  \"messageTxInterval\": 0\n }\n}",
        "name:4: " + cli + ".messageTxInterval: expected a whole number from 1 to 3600, got 0"},
       {head + "  \"mgmtAddrTxOption\":\n {\n\"mgmtAddrTxMode\": 9} } }",
        "name:6: " + cli + ".mgmtAddrTxOption.mgmtAddrTxMode: expected one of"},
       {head + "  \"surprise\": 1 } }", "name:4: " + cli + ".surprise: no such attribute"},
       {head + "  \"mgmtAddrTxOption\":\n {\n\"intfNam\": \"x\"} } }",
        "name:6: " + cli + ".mgmtAddrTxOption.intfNam: no such field"},
       {head + "  \"cliPortConfig\": 1 } }", "name:4: " + cli + ".cliPortConfig: expected an obj"},
       {head + "  \"cliPortConfig\": {\n\"Ethernet1\": {},\n\"Ethenet1\": {} } } }",
        "name:6: " + cli + ".cliPortConfig.Ethenet1: expected a port name"},
       {head + "  \"cliPortConfig\": {\n\"Ethernet1\": {\n\"intfId\": \"Ethernet1\"} } } }",
        "name:6: " + cli + ".cliPortConfig.Ethernet1.intfId: is the key"},
       {head + "\"cliPortConfig\": {\"Ethernet1\": {\"networkPolicyConfig\": [\n{},\n{\"appType\": "
               "1,\n\"dscp\": 256}]}}}}",
        "name:7: " + cli + ".cliPortConfig.Ethernet1.networkPolicyConfig[1].dscp: expected a wh"},
       {head + "\n\"tlvSysName\": false,\n\"tlvSysCap\": true } }",
        "name:6: " + cli + ".tlvSysCap: stands in line 3 already"},
       {"{\n\n\"l2discovery/lldp/config\": {} }",
        "name:3: l2discovery/lldp/config: no such configuration; there is " + cli},
       {"{\"identity/nbrClassification/cliConfig\":{\n\"clearRequest\": []}}",
        "name:2: identity/nbrClassification/cliConfig.clearRequest: a request is no"},
       {"{\"identity/nbrClassification/cliConfig\":\n{\"neighbor\": [{\"classification\":\n"
        "{\"flags\": 2}}]}}",
        "name:3: identity/nbrClassification/cliConfig.neighbor[0].classification.flags: expected"},
       {head + "\"tlvSysName\": tru\n } }", "name:4: syntax error"},
       {head + "\"tlvSysName\": true\n\n\"tlvPortDesc\": 1 } }", "name:6: syntax error"},
       {head + "\"messageTxInterval\": 1e400 } }", "name:4: number overflow"},
       {head + "\"tlvSysName\": true } } x", "name:4: syntax error"},
       {head + "/* no end", "name:4: syntax error"},
       {"{\"\xff\": 1}", "name:1: syntax error"},
       {"\n" + std::string(100'000, '['), "name:2: nested more than 16 levels deep"},
   };
   for (const Case& one : cases) {
      std::string said = fault(one.text);
      EXPECT_THAT(said, StartsWith(one.fault)) << one.text.substr(0, 300);
      EXPECT_THAT(said, Not(HasSubstr("\n")));
   }
   EXPECT_EQ(differences(), "{}");
   EXPECT_EQ(fault(wholeFile), "");
}

TEST_F(HostConfig, OnlyANamedFileHasToExist) {
   Host::ConfigFile(file, false).load(config);
   EXPECT_THROW(Host::ConfigFile(file, true).load(config), Host::StartError);
   EXPECT_THROW(Host::ConfigFile(folder.path, false).load(config), Host::StartError);
   ASSERT_EQ(mkfifo(file.c_str(), 0600), 0);
   EXPECT_THROW(Host::ConfigFile(file, false).load(config), Host::StartError);
   unlink(file.c_str());
   write("{}" + std::string(Host::ConfigFile::maxBytes, ' '));
   EXPECT_THROW(Host::ConfigFile(file, false).load(config), Host::StartError);
}

TEST_F(HostConfig, SavingKeepsPermissionsAndLinks) {
   Host::ConfigFile saved(folder.path + "/link.json", false);
   ASSERT_EQ(symlink(file.c_str(), saved.path().c_str()), 0);
   write("{}");
   ASSERT_EQ(chmod(file.c_str(), 0640), 0);
   std::ofstream(file + ".new") << "what a crash has left";
   store.cliConfig()->reinitDelayIs(3);
   saved.save(config);
   EXPECT_THAT(read(), HasSubstr("\"reinitDelay\": 3"));
   Host::ConfigFile dangling(folder.path + "/dangling.json", false);
   std::filesystem::create_symlink("new.json", dangling.path());
   dangling.save(config);
   EXPECT_TRUE(std::filesystem::is_symlink(dangling.path()));
   EXPECT_TRUE(std::filesystem::exists(folder.path + "/new.json"));
   std::filesystem::create_symlink("new.json.", folder.path + "/new.json.");
   EXPECT_THROW(Host::ConfigFile(folder.path + "/new.json.", false).save(config), Host::StartError);
   EXPECT_TRUE(std::filesystem::is_symlink(folder.path + "/new.json."));
   struct stat status {};
   ASSERT_EQ(lstat(file.c_str(), &status), 0);
   EXPECT_EQ(status.st_mode, static_cast<mode_t>(S_IFREG | 0640));
   EXPECT_TRUE(std::filesystem::is_symlink(saved.path()));
   EXPECT_FALSE(std::filesystem::exists(file + ".new"));
}

TEST_F(HostConfig, TheApiTellsAndSavesIt) {
   Host::ConfigFile saved(file, false);
   Host::ApiResources resources;
   Host::serveConfig(resources, config, saved);
   store.cliConfig()->enabledIs(false);
   auto answer = resources.serve({"GET", "/v1/config", ""});
   EXPECT_EQ(answer.body.dump(), R"({"l2discovery/lldp/cliConfig":{"enabled":false}})");
   EXPECT_EQ(resources.serve({"POST", "/v1/config/save", "{}"}).status, 400);
   EXPECT_FALSE(std::filesystem::exists(file));
   answer = resources.serve({"POST", "/v1/config/save", ""});
   EXPECT_EQ(answer.status, 200);
   EXPECT_EQ(answer.body["file"], file);
   EXPECT_EQ(read(), config.differences().dump(3) + "\n");

   // What no start would read is not written, and what is there already is not written again.
   struct stat first {
   }, second{};
   ASSERT_EQ(stat(file.c_str(), &first), 0);
   auto row = store.cliConfig()->cliPortConfigIs(Wirekit::IntfId("Ethernet1"));
   row->networkPolicyConfigIs({.policyName = Rex::String(std::string(1 << 20, 'x'))});
   answer = resources.serve({"POST", "/v1/config/save", ""});
   EXPECT_EQ(answer.status, 500);
   EXPECT_THAT(answer.body.dump(), HasSubstr("no start reads more than 1048576"));
   store.cliConfig()->cliPortConfigDel(Wirekit::IntfId("Ethernet1"));
   for (int i = 0; i < 20; ++i) {
      EXPECT_EQ(resources.serve({"POST", "/v1/config/save", ""}).status, 200);
   }
   ASSERT_EQ(stat(file.c_str(), &second), 0);
   EXPECT_EQ(first.st_ino, second.st_ino);

   // Where the new file cannot be made, the old one stands.
   const std::string old = read();
   std::filesystem::create_directories(file + ".new/in/the/way");
   store.cliConfig()->enabledIs(true);
   answer = resources.serve({"POST", "/v1/config/save", ""});
   EXPECT_EQ(answer.status, 500);
   EXPECT_THAT(answer.body.dump(), HasSubstr(file + " cannot be written: "));
   EXPECT_EQ(read(), old);

   // Writing has a rate.
   std::filesystem::remove_all(file + ".new");
   unsigned status = 200;
   for (uint32_t i = 1; status == 200 && i <= 20; ++i) {
      store.cliConfig()->messageTxHoldTimeIs(i);
      status = resources.serve({"POST", "/v1/config/save", ""}).status;
   }
   EXPECT_EQ(status, 429);
   store.test.timeIs(store.test.now() + 1);
   EXPECT_EQ(resources.serve({"POST", "/v1/config/save", ""}).status, 200);
}

}  // namespace
