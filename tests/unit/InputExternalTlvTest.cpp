// TLVs that other agents want sent, on their way to the ports.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/ChangeLog.h"
#include "support/InputFixture.h"

using namespace Lldp;
using namespace LldpTest;
using Wirekit::IntfId;

namespace {

UnknownOrgDefTlv orgTlv(uint32_t subtype, const std::string& text) {
   return {{Oui{0x0080C2}, subtype, UnknownOrgDefTlv::Index(1)},
           BoundedString507(Rex::String(text))};
}

struct ProviderFixture : InputFixture {
   explicit ProviderFixture(bool withPort = true) {
      startActive();
      if (withPort) intf("Ethernet1");
   }
   ExternalTlvConfig::Ptr provider(const char* name) {
      auto config = Rex::make<ExternalTlvConfig>();
      config->nameIs(name);
      externalTlvs->entityPtrIs(name, config);
      return config;
   }
   // Replaces the provider's row of Ethernet1: keys are watched, not what stands inside a row.
   void wish(const ExternalTlvConfig::Ptr& config, const std::vector<UnknownOrgDefTlv>& tlvs) {
      Rex::Dispatcher::run([&] {
         config->externalTlvPortConfigDel(IntfId("Ethernet1"));
         auto row = config->externalTlvPortConfigIs(IntfId("Ethernet1"));
         for (const auto& tlv : tlvs) row->tlvIs(tlv);
      });
   }
   // What is sent on Ethernet1: "<subtype><text>" of each TLV.
   std::string sent() {
      std::string all;
      for (auto [key, tlv] : localPort("Ethernet1")->unknownOrgDefTlv()) {
         all += std::to_string(key.subtype) + std::string(tlv.orgDefInfo.value().view());
      }
      return all;
   }
};

}  // namespace

TEST(InputExternalTlv, PortIsWrittenForDifferencesAlone) {
   ProviderFixture input;
   auto a = input.provider("a");
   input.wish(a, {orgTlv(3, "c"), orgTlv(1, "a"), orgTlv(2, "b")});
   EXPECT_EQ(input.sent(), "1a2b3c");
   auto log =
       Rex::make<ChangeLog>(std::vector<Rex::Ptr<const Rex::Entity>>{input.localPort("Ethernet1")});
   input.wish(a, {orgTlv(1, "a"), orgTlv(2, "b"), orgTlv(3, "c")});
   EXPECT_THAT(log->take(), testing::IsEmpty());
   input.wish(a, {orgTlv(1, "a"), orgTlv(2, "x"), orgTlv(3, "c")});
   EXPECT_EQ(log->take().size(), 1u);
   EXPECT_EQ(input.sent(), "1a2x3c");
   input.wish(a, {orgTlv(1, "a"), orgTlv(3, "c")});
   EXPECT_EQ(log->take().size(), 1u);
   EXPECT_EQ(input.sent(), "1a3c");
   std::string longest(507, 'z');
   input.wish(a, {orgTlv(1, longest)});
   EXPECT_EQ(input.sent(), "1" + longest);
   a->externalTlvPortConfigDel(IntfId("Ethernet1"));
   EXPECT_EQ(input.sent(), "");
}

TEST(InputExternalTlv, ProviderThatGoesTakesItsTlvsAlong) {
   ProviderFixture input;
   auto a = input.provider("a");
   auto b = input.provider("b");
   input.intf("Ethernet2");
   input.wish(a, {orgTlv(1, "a")});
   input.wish(b, {orgTlv(2, "b")});
   a->externalTlvPortConfigIs(IntfId("Ethernet9"));
   Rex::Dispatcher::run(
       [&] { a->externalTlvPortConfigIs(IntfId("Ethernet2"))->tlvIs(orgTlv(1, "q")); });
   EXPECT_EQ(input.localPort("Ethernet2")->unknownOrgDefTlvs(), 1u);
   input.externalTlvs->deleteEntity("a");
   EXPECT_EQ(input.localPort("Ethernet2")->unknownOrgDefTlvs(), 0u);
   EXPECT_EQ(input.sent(), "2b");
   input.wish(a, {orgTlv(1, "late")});  // nobody listens to it any more
   EXPECT_EQ(input.sent(), "2b");
   input.externalTlvs->entityPtrIs("a", a);
   EXPECT_EQ(input.sent(), "1late2b");
   // An entry of another type is no provider.
   input.externalTlvs->entityPtrIs("c", Rex::make<Rex::Dir>());
   input.externalTlvs->deleteEntity("c");
   EXPECT_EQ(input.root->inputSm()->externalTlvConfigSm().size(), 2u);
}

// There is one slot for a key, and no arbitration: the last writer's text stands. Whoever takes its
// TLV away empties the slot, and the other's is not put back, since it counts as placed.
TEST(InputExternalTlv, LastWriterOfAKeyWins) {
   for (bool firstLeaves : {true, false}) {
      ProviderFixture input;
      auto a = input.provider("a");
      auto b = input.provider("b");
      input.wish(a, {orgTlv(1, "a")});
      input.wish(b, {orgTlv(1, "b")});
      EXPECT_EQ(input.sent(), "1b");
      input.wish(a, {orgTlv(1, "a")});  // what it has placed already, so that nothing is written
      EXPECT_EQ(input.sent(), "1b");
      input.wish(firstLeaves ? a : b, {});
      EXPECT_EQ(input.sent(), "");
      auto other = firstLeaves ? b : a;
      input.wish(other, {orgTlv(1, firstLeaves ? "b" : "a")});
      EXPECT_EQ(input.sent(), "");
      input.wish(other, {orgTlv(1, "new")});
      EXPECT_EQ(input.sent(), "1new");
   }
}

TEST(InputExternalTlv, WishWaitsForItsPort) {
   ProviderFixture input(false);
   auto a = input.provider("a");
   input.wish(a, {orgTlv(2, "b"), orgTlv(1, "a")});
   input.wish(input.provider("b"), {orgTlv(3, "c")});
   input.intf("Ethernet1");
   EXPECT_EQ(input.sent(), "1a2b3c");
}

// Nobody tells the record that a port went away: the one that comes back lacks what stands in it,
// until the provider changes that, takes the port's row away and adds it, or comes anew.
TEST(InputExternalTlv, PortThatComesBackLacksWhatIsOnRecord) {
   ProviderFixture input;
   auto a = input.provider("a");
   input.wish(a, {orgTlv(1, "a"), orgTlv(2, "b")});
   auto comeBack = [&] {
      input.phyDir->intfStatusDel(IntfId("Ethernet1"));
      input.intf("Ethernet1");
   };
   comeBack();
   EXPECT_EQ(input.sent(), "");
   input.wish(a, {orgTlv(1, "a"), orgTlv(2, "x")});
   EXPECT_EQ(input.sent(), "2x");
   a->externalTlvPortConfigDel(IntfId("Ethernet1"));
   input.wish(a, {orgTlv(1, "a"), orgTlv(2, "x")});
   EXPECT_EQ(input.sent(), "1a2x");
   comeBack();
   input.externalTlvs->deleteEntity("a");
   input.externalTlvs->entityPtrIs("a", a);
   EXPECT_EQ(input.sent(), "1a2x");

   // While the port is away, what is no longer wanted stays on record, and counts as placed when it
   // is wanted again. Without the port's row, the record goes whether or not there is a port.
   input.phyDir->intfStatusDel(IntfId("Ethernet1"));
   input.wish(a, {orgTlv(2, "x")});
   input.wish(a, {orgTlv(1, "a"), orgTlv(2, "x")});
   input.intf("Ethernet1");
   EXPECT_EQ(input.sent(), "");
   input.phyDir->intfStatusDel(IntfId("Ethernet1"));
   a->externalTlvPortConfigDel(IntfId("Ethernet1"));
   input.wish(a, {orgTlv(1, "a"), orgTlv(2, "x")});
   input.intf("Ethernet1");
   EXPECT_EQ(input.sent(), "1a2x");
}

TEST(InputExternalTlvDeathTest, ProvidersThatWantTheVerySame) {
   ProviderFixture input;
   auto a = input.provider("a");
   auto b = input.provider("b");
   input.wish(a, {orgTlv(1, "a")});
   EXPECT_DEATH(input.wish(b, {orgTlv(1, "a")}), "!localPort->unknownOrgDefTlv");
   EXPECT_DEATH(input.provider("a"), "!externalTlvConfigSmHas");
}
