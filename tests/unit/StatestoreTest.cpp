// The embedded state store: paths, mounts, and what each client sees.
#include <gmock/gmock.h>

#include "Foreign/Bridging.h"
#include "Foreign/Toggle.h"
#include "Rex/Dir.h"
#include "Rex/EntityType.h"
#include "Rex/Log.h"
#include "Statestore/Cell.h"
#include "Statestore/EntityManager.h"
#include "unit/RexFixture.h"

using namespace Statestore;
using testing::ElementsAre;

struct StatestoreTest : RexFixture, Mounter {
   Rex::Ptr<EntityManager> manager = Rex::make<EntityManager>();
   std::vector<MountStatus> told;

   void doMountsComplete(MountStatus status, const Rex::Ptr<EntityManager>& from) override {
      EXPECT_EQ(from.get(), manager.get());
      told.push_back(status);
   }
};

TEST_F(StatestoreTest, PathsGoRoundThroughTheirEncoding) {
   Steps steps{"port", "Ethernet3/1", "50%", "\xff a"};
   EXPECT_EQ(encodePath(steps), "port/Ethernet3%2F1/50%25/%FF%20a");
   EXPECT_EQ(decodePath(encodePath(steps)), steps);
   EXPECT_EQ(decodePath("//a///b/"), (Steps{"a", "b"}));
   EXPECT_EQ(decodePath("a%2fb"), (Steps{"a/b"}));
   for (const char* broken : {"a%", "a%2", "a%2/b", "%zz", "a%-1"}) {
      EXPECT_EQ(decodePath(broken), std::nullopt) << broken;
   }
}

TEST_F(StatestoreTest, AMountFindsOrMakesAndTheMounterIsToldOnceInALaterTurn) {
   auto standing = manager->entityIs("bridging/config", "Bridging::Config");
   auto group = manager->getMountGroup(this);
   group->doMount(Mount("bridging/config", "Bridging::Config", "r"));
   group->doMount(Mount("bridging/hwcapabilities", "Bridging::HwCapabilities", "wif"));
   EXPECT_EQ(pass(), 0u);
   group->doClose(false, "", 0.0);
   EXPECT_TRUE(told.empty());
   EXPECT_FALSE(manager->getEntity("bridging/hwcapabilities"));
   EXPECT_EQ(pass(), 1u);
   EXPECT_THAT(told, ElementsAre(mountSuccess_));
   EXPECT_EQ(int(told[0]), 4);
   EXPECT_EQ(pass(1), 0u);

   EXPECT_EQ(manager->getEntity("bridging/config"), standing);
   EXPECT_TRUE(
       Rex::dynamicPtr<Bridging::HwCapabilities>(manager->getEntity("bridging/hwcapabilities")));
   EXPECT_EQ(manager->mountFlags("bridging/hwcapabilities"), "wif");
   EXPECT_EQ(manager->mountFlags("bridging"), "");
   EXPECT_THAT(manager->paths(), ElementsAre("bridging/config", "bridging/hwcapabilities"));
}

TEST_F(StatestoreTest, AMountThatFailsIsToldAndTheOthersStand) {
   manager->entityIs("a", "Rex::Dir");
   struct {
      const char* path;
      const char* typeName;
      MountStatus status;
   } cases[] = {
       {"b", "No::Such", mountUnknownType_},
       {"b", "Bridging::SwitchIntfConfig", mountUnknownType_},  // made only by its holder
       {"", "Rex::Dir", mountUnknownType_},
       {"a", "Bridging::Config", mountOtherType_},
   };
   for (const auto& one : cases) {
      told.clear();
      auto group = manager->getMountGroup(this);
      group->doMount(Mount(one.path, one.typeName, "r"));
      group->doMount(Mount("good", "Rex::Dir", "r"));
      group->doClose(false, "", 0.0);
      pass();
      EXPECT_THAT(told, ElementsAre(one.status)) << one.path << " " << one.typeName;
      EXPECT_TRUE(manager->getEntity("good"));
   }
}

TEST_F(StatestoreTest, AnEmptyGroupIsToldTooAndAManagerThatGoesTellsNobody) {
   manager->getMountGroup(this)->doClose(false, "", 0.0);
   pass();
   EXPECT_THAT(told, ElementsAre(mountSuccess_));
   auto group = manager->getMountGroup(this);
   group->doClose(false, "", 0.0);
   group = nullptr;
   manager = nullptr;
   EXPECT_EQ(pass(1), 0u);
   EXPECT_EQ(told.size(), 1u);
}

TEST_F(StatestoreTest, LocalEntitiesAreOfOneClientAlone) {
   Rex::Context peer(clock);
   peer.cellId = 2;
   peer.serviceIs(std::shared_ptr<Tree>(&context.service<Tree>(), [](Tree*) {}));
   Rex::ContextScope inside(peer);
   auto other = Rex::make<EntityManager>();

   auto mine = manager->localEntityIs("interface/all", "Rex::Dir");
   auto theirs = other->localEntityIs("interface/all", "Rex::Dir");
   EXPECT_NE(mine, theirs);
   EXPECT_EQ(manager->getEntity("interface/all"), mine);
   EXPECT_EQ(manager->entityIs("interface/all", "Rex::Dir"), mine);
   auto shared = other->entityIs("shared", "Rex::Dir");
   EXPECT_TRUE(shared);
   EXPECT_EQ(manager->getEntity("shared"), shared);
   // Whoever fills a path may come before the one who declares it local.
   EXPECT_EQ(manager->localEntityIs("shared", "Rex::Dir"), shared);
   EXPECT_EQ(Cell::cellId(), 2);
   EXPECT_EQ(Cell::path("sys/net/status", 0), "cell/2/sys/net/status");
   EXPECT_EQ(Cell::path("sys/net/status", 1), "cell/1/sys/net/status");
}

TEST_F(StatestoreTest, TogglesComeFromTheContextTheFileOrTheirDefault) {
   context.service<ToggleFolder>().path = testing::TempDir();
   std::string path = testing::TempDir() + "/Toggles.json";
   std::vector<std::string> logs;
   context.logSink = [&](const Rex::LogEvent& event) { logs.push_back(event.text); };
   auto write = [&](const char* text) {
      FILE* file = fopen(path.c_str(), "w");
      fputs(text, file);
      fclose(file);
   };
   EXPECT_TRUE(getToggleState("absent", "NoSuchFile.json", true));
   EXPECT_THAT(logs, testing::ElementsAre(testing::HasSubstr("NoSuchFile.json cannot be read")));
   logs.clear();
   write(R"({"a": false, "b": 1, "set": false})");
   context.toggles["set"] = true;
   EXPECT_FALSE(getToggleState("a", "Toggles.json", true));
   EXPECT_TRUE(getToggleState("b", "Toggles.json", true));
   EXPECT_TRUE(getToggleState("set", "Toggles.json", false));
   EXPECT_FALSE(getToggleState("unnamed", "Toggles.json", false));
   EXPECT_THAT(logs, testing::ElementsAre(testing::HasSubstr("toggle b keeps its default")));
   logs.clear();
   for (const char* broken : {"", "{", "[1]"}) {
      write(broken);
      EXPECT_FALSE(getToggleState("a", "Toggles.json", true)) << "asked before";
      EXPECT_FALSE(getToggleState(broken, "Toggles.json", false)) << broken;
   }
   EXPECT_EQ(logs.size(), 3u);
   remove(path.c_str());
}
