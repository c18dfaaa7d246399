// The stream of an entity: each change of it and of what it owns, by the description alone.
#include <gmock/gmock.h>

#include "Rex/Dir.h"
#include "host/ApiStream.h"
#include "host/Watch/EntityStreams.h"
#include "model/LocalSystem.h"
#include "model/Status.h"
#include "support/EventReader.h"
#include "unit/HostStore.h"

using namespace testing;

namespace {

const std::string cliPath = "l2discovery/lldp/cliConfig";
const std::string statusDir = "l2discovery/lldp/status/local";

struct HostEntityStream : Test {
   HostTest::Store store;
   Host::EntityStreams streams{store.manager};
   Host::ApiResources resources;
   Host::ApiStream stream{1 << 20, [] {}};
   std::shared_ptr<void> source;

   HostEntityStream() { streams.serveIn(resources); }

   unsigned listen(const std::string& path) {
      auto answer = resources.serve({"GET", "/v1/stream/" + path, {}});
      if (answer.stream) source = answer.stream(stream);
      return answer.status;
   }
   // "<event> <path> <value>" of each since the last call.
   std::vector<std::string> told() {
      std::string octets(stream.waiting());
      stream.sent(octets.size());
      std::vector<std::string> texts;
      for (const auto& event : LldpTest::takeEvents(octets)) {
         std::string path = event.data["path"].get<std::string>();
         std::string value = event.data.contains("value") ? " " + event.data["value"].dump() : "";
         texts.push_back(event.name + " " + path + value);
      }
      return texts;
   }
};

TEST_F(HostEntityStream, TellsValuesAndMembersAsTheyComeChangeAndGo) {
   ASSERT_EQ(listen(cliPath), 200u);
   EXPECT_THAT(told(), IsEmpty());
   store.cliConfig()->messageTxIntervalIs(5);
   store.cliConfig()->messageTxIntervalIs(5);
   EXPECT_THAT(told(), ElementsAre("changed " + cliPath + "/messageTxInterval 5"));

   const Wirekit::IntfId port("Ethernet3/1");
   const std::string portPath = cliPath + "/cliPortConfig/Ethernet3%2F1";
   // Filled in the reaction that it is made in, it is told once and whole.
   Rex::Dispatcher::run(
       [&] { store.cliConfig()->cliPortConfigIs(port)->adminStatusIs(Lldp::AdminStatus::rxOnly); });
   auto made = told();
   ASSERT_THAT(made, SizeIs(1));
   EXPECT_THAT(made[0], AllOf(StartsWith("changed " + portPath + " {"), HasSubstr("rxOnly")));
   auto config = store.cliConfig()->cliPortConfig(port);
   config->adminStatusIs(Lldp::AdminStatus::txOnly);
   store.cliConfig()->cliPortConfigDel(port);
   config->adminStatusIs(Lldp::AdminStatus::rxOnly);
   EXPECT_THAT(told(), ElementsAre("changed " + portPath + "/adminStatus \"txOnly\"",
                                   "removed " + portPath));
   source.reset();
   store.cliConfig()->messageTxIntervalIs(6);
   EXPECT_THAT(told(), IsEmpty());
}

TEST_F(HostEntityStream, TellsElementsOfCollections) {
   store.manager->entityIs(statusDir, "Rex::Dir");
   auto dir = store.at<Rex::Dir>(statusDir.c_str());
   auto status = Rex::dynamicPtr<Lldp::Status>(dir->createEntity("1", "Lldp::Status"));
   Lldp::PortStatus::Ptr port = status->portStatusIs(Wirekit::IntfId("Ethernet1"), 1.0);
   ASSERT_EQ(listen(statusDir + "?standing=1"), 200u);
   EXPECT_THAT(told(), ElementsAre(StartsWith("changed " + statusDir + " {\"entityPtr\":{\"1\":")));

   auto neighbor = port->remoteSystemIs(7, Lldp::RemoteSystem::Msap{});
   const std::string path = statusDir + "/1/portStatus/Ethernet1/remoteSystem/7";
   EXPECT_THAT(told(), ElementsAre(StartsWith("changed " + path + " {\"index\":7")));
   neighbor->vlanNameIs({Bridging::VlanId(5), {}});
   neighbor->vlanNameDel(Bridging::VlanId(5));
   EXPECT_THAT(told(), ElementsAre(StartsWith("changed " + path + "/vlanName/5 {"),
                                   "removed " + path + "/vlanName/5"));
   dir->deleteEntity("1");
   EXPECT_THAT(told(), ElementsAre("removed " + statusDir + "/1"));
}

// Also by the way of a holder that leaves, and although the entity itself is not told.
TEST_F(HostEntityStream, EndsWhenTheEntityLeaves) {
   store.manager->entityIs(statusDir, "Rex::Dir");
   auto dir = store.at<Rex::Dir>(statusDir.c_str());
   auto status = Rex::dynamicPtr<Lldp::Status>(dir->createEntity("1", "Lldp::Status"));
   status->portStatusIs(Wirekit::IntfId("Ethernet1"), 1.0);
   const std::string path = statusDir + "/1/portStatus/Ethernet1";
   ASSERT_EQ(listen(path), 200u);
   status->portStatusIs(Wirekit::IntfId("Ethernet2"), 1.0);
   status->remTablesInsertsInc(1);
   EXPECT_THAT(told(), IsEmpty());
   dir->deleteEntity("1");
   EXPECT_FALSE(stream.over());
   EXPECT_THAT(told(), ElementsAre("gone " + path));
   EXPECT_TRUE(stream.over());
}

TEST_F(HostEntityStream, RefusesWhatIsNoEntity) {
   EXPECT_EQ(listen("no/such"), 404u);
   EXPECT_EQ(listen(cliPath + "/messageTxInterval"), 404u);
   EXPECT_EQ(listen(cliPath + "?standing=2"), 400u);
   EXPECT_EQ(listen(cliPath + "?depth=1"), 400u);
   EXPECT_EQ(resources.serve({"PUT", "/v1/stream/" + cliPath, {}}).status, 405u);
}

}  // namespace
