// What a start stands on: command line, time anchor, folders.
#include <gmock/gmock.h>

#include <fstream>
#include <optional>

#include "host/File.h"
#include "host/Options.h"
#include "host/StartError.h"
#include "host/TimeAnchor.h"
#include "support/Refusal.h"
#include "unit/HostFeedersFolder.h"

using namespace testing;
using LldpTest::refusal;

namespace {

std::optional<Host::Options> parse(std::vector<const char*> words) {
   words.insert(words.begin(), "lldp-agentd");
   return Host::Options::parse(static_cast<int>(words.size()), words.data());
}

TEST(HostOptions, WhatTheyMean) {
   auto none = parse({});
   ASSERT_TRUE(none);
   EXPECT_TRUE(none->served().empty());
   EXPECT_EQ(none->cell, 1);
   EXPECT_TRUE(none->feeds("links") && none->feeds("host") && none->feeds("bridging"));

   auto some = parse({"--port", "Ethernet1=eth0", "--port=Management1=mgmt", "--cell", "1",
                      "--cell", "2", "--feeders", "links,host", "--trace", "LldpProtocol=0,4,6",
                      "--trace", "LldpAgent=all", "eth0", "eth1"});
   ASSERT_TRUE(some);
   EXPECT_EQ(some->served(), (std::set<std::string>{"eth0", "eth1", "mgmt"}));
   EXPECT_EQ(some->ports.at("mgmt"), Wirekit::IntfId("Management1"));
   EXPECT_EQ(some->cell, 2);
   EXPECT_FALSE(some->feeds("bridging"));
   EXPECT_FALSE(none->config);
   EXPECT_EQ(parse({"--config", ""})->config, "") << "a file that is not there, and so refused";
   ASSERT_EQ(some->trace.size(), 2u);
   EXPECT_EQ(some->trace[0].mask, 0b1010001);
   EXPECT_EQ(some->trace[1].mask, 0x3ff);
}

TEST(HostOptions, TheSocketForReadingStandsBesideTheOther) {
   EXPECT_FALSE(parse({})->readGroup);
   auto both = parse({"--read-group", "root", "--write-group", "root", "--socket", "a/b.sock"});
   EXPECT_EQ(both->readSocket, "a/read.sock");
   EXPECT_EQ(both->readGroup, gid_t{0});
   EXPECT_EQ(both->writeGroup, gid_t{0});
   EXPECT_EQ(parse({"--read-group", "root", "--read-socket", "c.sock"})->readSocket, "c.sock");
}

TEST(HostOptions, ThePasswordOfTheStoreComesFromAFile) {
   Host::TestFolder folder;
   std::string file = folder.path + "/password";
   std::ofstream(file) << "secret\n";
   EXPECT_FALSE(parse({})->store);
   auto options = parse({"--store", "unix:/s?database=2", "--store-password-file", file.c_str()});
   EXPECT_EQ(options->store->text(), "unix:/s?database=2");
   EXPECT_EQ(options->store->password, "secret");
   EXPECT_FALSE(options->gateway);
   setenv("LLDP_STORE", "unix:/of/a/command", 1);
   EXPECT_FALSE(parse({})->store);
   EXPECT_EQ(parse({"--gateway"})->store->text(), "unix:/of/a/command");
   EXPECT_EQ(parse({"--gateway", "--store", "unix:/s"})->store->text(), "unix:/s");
   unsetenv("LLDP_STORE");
   EXPECT_THAT(refusal<Host::StartError>([&] {
                  parse({"--store", "redis://:x@h", "--store-password-file", file.c_str()});
               }),
               AllOf(HasSubstr(file), HasSubstr("already")));
}

TEST(HostOptions, AWrongOneIsNamedInOneLine) {
   struct Case {
      std::vector<const char*> words;
      std::vector<const char*> said;
   };
   const Case cases[] = {
       {{"--cell", "3"}, {"--cell", "3"}},
       {{"--cell", "one"}, {"--cell", "one"}},
       {{"--surprise"}, {"--surprise"}},
       {{"--port", "Ethernet1"}, {"--port", "Ethernet1"}},
       {{"--port", "=eth0"}, {"--port", "=eth0"}},
       {{"--port", "eth0=Ethernet1"}, {"--port", "eth0=Ethernet1", "port name"}},
       {{"--port", "UnconnectedEthernet1=eth0"}, {"--port"}},
       {{"--port", "Ethernet1=a", "--port", "Ethernet1=b"}, {"Ethernet1=b", "given to a"}},
       {{"--port", "Ethernet1=a", "--port", "Ethernet2=a"}, {"Ethernet2=a"}},
       {{"--feeders", "dreams"}, {"--feeders", "dreams"}},
       {{"--feeders", "none", "eth0"}, {"--feeders", "links"}},
       {{"--feeders", "addresses,host"}, {"--feeders", "links"}},
       {{"--trace", "Nothing"}, {"--trace", "Nothing"}},
       {{"--trace", "A=10"}, {"--trace", "A=10"}},
       {{"--trace", "A=1,"}, {"A=1,"}},
       {{"--trace", "A="}, {"A="}},
       {{"--trace", "=1"}, {"=1"}},
       {{"--socket"}, {"--socket"}},
       {{"--store", ""}, {"--store", "expected redis://"}},
       {{"--store", "redis://:secret%@h"}, {"--store", "%25"}},
       {{"--store", "unix:/s", "--store-password-file", "none"}, {"none", "no such file"}},
       {{"--store-password-file", "x"}, {"--store-password-file", "needs --store"}},
       {{"--gateway"}, {"--gateway", "needs --store"}},
       {{"--write-group", "no such"}, {"--write-group", "no such", "no group"}},
       {{"--read-group", "no such"}, {"--read-group", "no such", "no group"}},
       {{"--read-socket", "x"}, {"--read-socket x", "--read-group"}},
       {{"--socket", "x", "--read-socket", "x", "--read-group", "root"}, {"--read-socket x"}},
   };
   for (const Case& one : cases) {
      std::string said = refusal<Host::StartError>([&] { parse(one.words); });
      for (const char* word : one.said) EXPECT_THAT(said, HasSubstr(word));
      EXPECT_THAT(said, Not(HasSubstr("\n")));
   }
}

TEST(HostTimeAnchor, StandsForOneBoot) {
   Host::TestFolder folder;
   const std::string file = folder.path + "/anchor";
   EXPECT_EQ(Host::timeAnchor(file, "boot-1", 1000.25), 1000.25);
   EXPECT_EQ(Host::timeAnchor(file, "boot-1", 9999), 1000.25) << "a restart of the same boot";
   EXPECT_EQ(Host::standingAnchor(file, "boot-1"), 1000.25);
   EXPECT_EQ(Host::standingAnchor(file, "boot-2"), std::nullopt);
   EXPECT_EQ(Host::standingAnchor(folder.path + "/none", "boot-1"), std::nullopt);
   EXPECT_EQ(Host::timeAnchor(file, "boot-2", 2000), 2000);
   EXPECT_EQ(Host::timeAnchor(file, "boot-1", 3000), 3000) << "the earlier boot is forgotten";
   EXPECT_THROW(Host::timeAnchor(folder.path + "/no/such", "boot-1", 1), Host::StartError);
}

TEST(HostTimeAnchor, ADamagedFileIsReplaced) {
   Host::TestFolder folder;
   const std::string file = folder.path + "/anchor";
   Host::timeAnchor(file, "boot-1", 1234.5);
   std::string whole;
   std::getline(std::ifstream(file), whole);
   for (size_t length = 0; length < whole.size(); ++length) {
      std::ofstream(file) << whole.substr(0, length);
      EXPECT_EQ(Host::timeAnchor(file, "boot-1", 7), 7) << whole.substr(0, length);
   }
   std::ofstream(file) << "boot-1 nan end";
   EXPECT_EQ(Host::timeAnchor(file, "boot-1", 7), 7);
}

TEST(HostFile, AFolderIsMadeOrRefused) {
   Host::TestFolder folder;
   Host::writableFolder(folder.path + "/a/b", "the folder");
   Host::writeWhole(folder.path + "/a/b/file", "one");
   Host::writeWhole(folder.path + "/a/b/file", "two");
   std::string content;
   std::getline(std::ifstream(folder.path + "/a/b/file"), content);
   EXPECT_EQ(content, "two");
   for (const std::string& bad : {folder.path + "/a/b/file", folder.path + "/a/b/file/below"}) {
      auto use = [&] { Host::writableFolder(bad, "the folder"); };
      EXPECT_THAT(refusal<Host::StartError>(use), StartsWith("the folder " + bad));
   }
}

}  // namespace
