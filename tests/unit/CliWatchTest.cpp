// The operator's command: what happens, line by line, and what peers can do with their texts.
#include <gmock/gmock.h>
#include <sys/fsuid.h>
#include <sys/stat.h>
#include <unistd.h>

#include <fstream>

#include "Rex/EntityType.h"
#include "cli/EventStream.h"
#include "cli/Failure.h"
#include "model/Status.h"
#include "unit/CliFakeAgent.h"
#include "unit/CliRun.h"

namespace {

using LldpCli::Json;
using testing::HasSubstr;
using Text = Lldp::BoundedString255;

Rex::Ptr<Lldp::Status> oneNeighbor(const std::string& text) {
   auto status = Rex::make<Lldp::Status>();
   auto port = status->portStatusIs(Wirekit::IntfId("Ethernet1"), 0.0);
   Text octets(text.data(), text.size());
   Lldp::RemoteSystem::Msap msap{
       {Lldp::ChassisIdSubtype::local, Lldp::ChassisId(text.data(), text.size())},
       {Lldp::PortIdSubtype::local, Lldp::PortId(text.data(), text.size())}};
   auto made = port->remoteSystemIs(1, msap);
   made->sysNameIs(Lldp::BoundedString255Tlv::create(octets));
   made->sysDescIs(Lldp::BoundedString255Tlv::create(octets));
   made->portDescIs(Lldp::BoundedString255Tlv::create(octets));
   return status;
}

std::string event(const std::string& name, const Json& data) {
   return "id: 1\nevent: " + name + "\ndata: " + data.dump() + "\n\n";
}

Json neighborEvent(const Lldp::Status& status) {
   auto port = status.portStatus(Wirekit::IntfId("Ethernet1"));
   return {{"time", 990.5},
           {"port", "Ethernet1"},
           {"neighbor", Rex::entityToJson(*port->remoteSystem(1))}};
}

class CliWatch : public testing::Test {
 protected:
   CliWatch() { setenv("TZ", "UTC", 1), tzset(); }

   CliDone watch(const std::string& octets, std::vector<std::string> words = {}) {
      CliFakeAgent agent;
      agent.stream("/v1/events", octets);
      agent.stream("/v1/events?standing=1", octets);
      agent.start();
      words.insert(words.begin(), {"--socket", agent.socketPath(), "watch"});
      CliDone done = cliRun(words);
      EXPECT_EQ(done.status, 1);
      EXPECT_EQ(done.err, "lldp: the agent at " + agent.socketPath() + " is gone\n");
      return done;
   }
};

TEST_F(CliWatch, EventsAsLines) {
   Json data = neighborEvent(*oneNeighbor("spine"));
   Json changed = data;
   changed["changed"] = {"sysName", "systemCapabilities", "managementAddress", "unheardOf"};
   Json gone = data;
   gone["reason"] = "timedOut";
   const std::string who = "spine, chassis spine (locally assigned), port spine (locally assigned)";
   const std::vector<std::pair<std::string, std::string>> cases{
       {event("neighbor-standing", data), "neighbor: " + who},
       {event("neighbor-added", data), "neighbor added: " + who},
       {event("neighbor-changed", changed),
        "neighbor changed: spine: System name: spine; Capabilities: no longer sent; "
        "Management address: no longer sent"},
       {event("neighbor-gone", gone), "neighbor gone (timed out): " + who},
       {event("port-down", {{"time", 990.5}, {"port", "Ethernet1"}}), "port down"},
   };
   for (const auto& [octets, words] : cases) {
      EXPECT_EQ(watch(octets).out, "2001-09-09 01:46:30  Ethernet1  " + words + "\n");
   }
   EXPECT_EQ(watch(event("missed", {{"events", 7}})).out,
             "7 events were missed here: they came faster than they were read\n");
   EXPECT_EQ(watch(event("standing-end", {{"time", 1000}})).out,
             "2001-09-09 01:46:40  this is what stands; from here on what changes\n");
}

TEST_F(CliWatch, EventsAsJson) {
   Json data = neighborEvent(*oneNeighbor("spine"));
   data["changed"] = {"sysName", "portVlanId", "portVlanIdTlvReceived", "unheardOf"};
   std::string out = watch(event("neighbor-changed", data), {"--json", "--standing"}).out;
   EXPECT_EQ(std::count(out.begin(), out.end(), '\n'), 1);
   Json line = Json::parse(out);
   EXPECT_EQ(line.at("neighbor").at("systemName"), "spine");
   line.erase("neighbor");
   EXPECT_EQ(line, Json::parse(R"({"event": "neighbor-changed", "time": 999999990.5,
      "port": "Ethernet1", "changed": ["systemName", "portVlanId", "unheardOf"]})"));
}

TEST_F(CliWatch, OnePortAndWhatConcernsAll) {
   std::string octets = event("port-up", {{"time", 1}, {"port", "Ethernet1"}}) +
                        event("port-up", {{"time", 1}, {"port", "Ethernet10"}}) +
                        event("missed", {{"events", 1}});
   std::string out = watch(octets, {"Ethernet10", "--json"}).out;
   EXPECT_THAT(out, testing::Not(HasSubstr("\"Ethernet1\"")));
   EXPECT_EQ(std::count(out.begin(), out.end(), '\n'), 2);
   EXPECT_THAT(watch(octets, {"Ethernet10"}).out,
               testing::StartsWith("no port Ethernet10 yet; waiting for it\n"));
   EXPECT_EQ(cliRun({"watch", "eth0"}).status, 2);
}

TEST(CliEventStream, EventsComeHoweverTheirOctetsAreCut) {
   const std::string octets =
       ":comment\r\nid: 4\r\nevent:a\r\ndata: 1\r\ndata:2\r\n\r\nretry: 3\n\nevent: b\ndata: 3\n\n";
   for (size_t piece = 1; piece <= octets.size(); ++piece) {
      std::string seen;
      LldpCli::EventStream stream([&](const std::string& name, const std::string& data) {
         seen += name + "=" + data + ";";
      });
      for (size_t at = 0; at < octets.size(); at += piece) stream.put(octets.substr(at, piece));
      EXPECT_EQ(seen, "a=1\n2;b=3;");
   }
   LldpCli::EventStream stream([](const std::string&, const std::string&) {});
   EXPECT_THROW(
       {
          for (int i = 0; i < 100; ++i) stream.put(std::string(100'000, 'x'));
       },
       LldpCli::Failure);
}

// Where only read.sock admits this user. Root would pass by the permissions.
TEST(CliReadSocket, ServesWhatOnlyReads) {
   CliFakeAgent agent;
   agent.answer("/v1/config", "200 OK", "{}");
   agent.start("read.sock");
   std::ofstream(agent.socketPath()).close();
   ASSERT_EQ(chmod(agent.socketPath().c_str(), 0), 0);
   constexpr uid_t nobody = 65534;
   auto before = static_cast<uid_t>(setfsuid(nobody));
   CliDone shown = cliRun({"--socket", agent.socketPath(), "show", "config"});
   CliDone set = cliRun({"--socket", agent.socketPath(), "set", "interval", "5"});
   setfsuid(before);
   EXPECT_EQ(shown.status, 0) << shown.err;
   EXPECT_EQ(set.status, 1);
   EXPECT_THAT(set.err, HasSubstr("no right to use " + agent.socketPath()));
   EXPECT_EQ(agent.requests().size(), 1u);
}

TEST(CliBusyAgent, IsAskedOnceMore) {
   const std::string body = R"({"error": {"message": "slower"}})";
   CliFakeAgent agent;
   agent.answerOnce("/v1/config", "429 Too Many Requests", body, "Retry-After: 3\r\n");
   agent.answer("/v1/config", "200 OK", "{}");
   agent.answer("/v1/paths", "429 Too Many Requests", body, "Retry-After: 99999\r\n");
   agent.start();
   std::vector<long> pauses;
   LldpCli::Client client(agent.socketPath(),
                          {std::chrono::seconds(10), [&](std::chrono::milliseconds time) {
                              pauses.push_back(time.count());
                           }});
   EXPECT_EQ(client.get("/v1/config"), Json::object());
   EXPECT_THROW(client.get("/v1/paths"), LldpCli::Failure);
   EXPECT_THAT(pauses, testing::ElementsAre(3000, 10000));
   EXPECT_EQ(agent.requests().size(), 4u);
}

}  // namespace
