// The names of ports: who gets which, and that they stay across restarts.
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <filesystem>
#include <fstream>
#include <sstream>

#include "host/PortNames.h"
#include "host/StartError.h"
#include "support/Refusal.h"
#include "unit/HostFeedersFolder.h"

namespace Host {
namespace {

using Wirekit::IntfId;
using Given = std::map<std::string, IntfId>;
using Names = std::vector<std::string>;

class PortNamesTest : public testing::Test {
 protected:
   // Devices by name alone; their identity is made of it.
   static std::vector<PortDevice> devices(const Names& names) {
      std::vector<PortDevice> made;
      for (const std::string& name : names) made.push_back({name, "name:" + name});
      return made;
   }
   static std::vector<PortDevice> many(size_t count) {
      Names names;
      for (size_t i = 1; i <= count; ++i) names.push_back("d" + std::to_string(i));
      return devices(names);
   }
   static Names texts(const std::vector<IntfId>& names) {
      Names made;
      for (const IntfId& name : names) made.push_back(name.stringValue().stdString());
      return made;
   }
   // One run of the process: what it names its devices.
   Names run(const std::vector<PortDevice>& found, const Given& given = {}) {
      PortNames names(given, file);
      Names made = texts(names.namesOf(found));
      names.save();
      return made;
   }
   std::string content() const {
      std::ostringstream text;
      text << std::ifstream(file).rdbuf();
      return text.str();
   }
   void contentIs(const std::string& text) { std::ofstream(file) << text; }

   TestFolder temporary;
   const std::string& folder = temporary.path;
   const std::string file = folder + "/ports.json";
};

TEST_F(PortNamesTest, isPortName) {
   for (const char* name : {"Ethernet1", "Ethernet3/1/4", "Management2/1", "Ethernet0"}) {
      EXPECT_TRUE(PortNames::isPortName(name)) << name;
   }
   for (const char* name : {"", "Ethernet", "eth0", "UnconnectedEthernet1", "Vlan1", "Ethernet01",
                            "Ethernet99999999999999999999", "Ethernet3/01", "Ethernet00"}) {
      EXPECT_FALSE(PortNames::isPortName(name)) << name;
   }
}

TEST_F(PortNamesTest, theOperatorsWordThenTheOwnNameThenTheNextFree) {
   Given given{{"eth1", IntfId("Management1")}, {"eth3", IntfId("Ethernet2")}};
   EXPECT_EQ(
       run(devices({"eth0", "eth1", "Ethernet3", "eth2", "eth3", "Ethernet3/1"}), given),
       (Names{"Ethernet1", "Management1", "Ethernet3", "Ethernet4", "Ethernet2", "Ethernet3/1"}));
}

TEST_F(PortNamesTest, aNameStaysWithItsDevice) {
   EXPECT_EQ(run({{"eth0", "mac:a"}, {"eth1", "mac:b"}}), (Names{"Ethernet1", "Ethernet2"}));
   // The kernel numbered them the other way round, one is new, one comes later again.
   EXPECT_EQ(run({{"eth0", "mac:b"}, {"eth1", "mac:c"}}), (Names{"Ethernet2", "Ethernet3"}));
   EXPECT_EQ(run({{"eth0", "mac:d"}, {"eth7", "mac:a"}}), (Names{"Ethernet4", "Ethernet1"}));
}

TEST_F(PortNamesTest, theOperatorTakesANameAway) {
   EXPECT_EQ(run(devices({"a", "b"})), (Names{"Ethernet1", "Ethernet2"}));
   Given given{{"b", IntfId("Ethernet1")}};
   EXPECT_EQ(run(devices({"a", "b"}), given), (Names{"Ethernet2", "Ethernet1"}));
   EXPECT_EQ(run(devices({"a", "b"})), (Names{"Ethernet2", "Ethernet1"})) << "for good";
   // A name that is given to a device that is not there is kept for it.
   EXPECT_EQ(run(devices({"a", "b", "c"}), {{"x", IntfId("Ethernet1")}}),
             (Names{"Ethernet2", "Ethernet3", "Ethernet4"}));
}

TEST_F(PortNamesTest, slotsBeyond128Devices) {
   Names flat = run(many(128));
   EXPECT_EQ(flat.front(), "Ethernet1");
   EXPECT_EQ(flat.back(), "Ethernet128");
   // One more: the present ones keep their names.
   Names more = run(many(129));
   EXPECT_EQ(more[127], "Ethernet128");
   EXPECT_EQ(more[128], "Ethernet1/1");

   std::filesystem::remove(file);
   Names slots = run(many(500));
   EXPECT_EQ(slots[0], "Ethernet1/1");
   EXPECT_EQ(slots[127], "Ethernet1/128");
   EXPECT_EQ(slots[128], "Ethernet2/1");
   EXPECT_EQ(slots[499], "Ethernet4/116");
   EXPECT_EQ(std::set<std::string>(slots.begin(), slots.end()).size(), 500u);
   EXPECT_EQ(run(many(500)), slots);
}

TEST_F(PortNamesTest, nothingNewWritesNothing) {
   run(devices({"a"}));
   auto written = std::filesystem::last_write_time(file);
   run(devices({"a"}));
   EXPECT_EQ(std::filesystem::last_write_time(file), written);
   EXPECT_EQ(std::distance(std::filesystem::directory_iterator(folder), {}), 1) << "no leftovers";
}

TEST_F(PortNamesTest, aBrokenFileIsRefusedAndKept) {
   for (const char* broken :
        {"", "{", "[]", "7", R"({"name:a": 1})", R"({"name:a": "eth0"})", R"({"name:a": ""})",
         R"({"name:a": "Ethernet1", "name:b": "Ethernet1"})", "\xFF\xFE",
         R"({"name:a": "Ethernet1", "name:a": "Ethernet2"})"}) {
      contentIs(broken);
      std::string words = LldpTest::refusal<StartError>([&] { run(devices({"a"})); });
      EXPECT_NE(words.find(file), std::string::npos) << words;
      EXPECT_EQ(words.find('\n'), std::string::npos) << words;
      EXPECT_EQ(content(), broken);
   }
   std::filesystem::remove(file);
   std::filesystem::create_directory(file);
   EXPECT_THROW(run(devices({"a"})), StartError);
   std::filesystem::remove(file);
   ASSERT_EQ(mkfifo(file.c_str(), 0600), 0);
   EXPECT_THROW(run(devices({"a"})), StartError) << "nobody writes to it";
}

TEST_F(PortNamesTest, aFolderThatIsGoneIsToldAndNothingForgotten) {
   PortNames names({}, folder + "/gone/ports.json");
   EXPECT_EQ(texts(names.namesOf(devices({"a"}))), Names{"Ethernet1"});
   EXPECT_THROW(names.save(), StartError);
   std::filesystem::create_directory(folder + "/gone");
   names.save();
   EXPECT_TRUE(std::filesystem::exists(folder + "/gone/ports.json"));
}

}  // namespace
}  // namespace Host
