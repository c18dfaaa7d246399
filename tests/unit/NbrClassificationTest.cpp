// Which addresses are published as telephones. What follows from long sequences of events is
// compared with plain passes over everything in the random world.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "Lldp/LldpNbrClassificationSm/NbrClassificationSm.h"
#include "support/ChangeLog.h"
#include "support/TestContext.h"

using namespace Identity::NbrClassification;
using Lldp::Agent::NbrClassification::NbrClassificationSm;
using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;
using Wirekit::EthAddr;
using Wirekit::IntfId;

namespace {

constexpr uint32_t telephone = 1;
const EthAddr mac1{2, 0, 0, 0, 0, 1};
const EthAddr mac2{2, 0, 0, 0, 0, 2};

struct NbrClassification : testing::Test {
   LldpTest::TestContext context;
   Interface::AllEthPhyIntfStatusDir::Ptr intfs = Rex::make<Interface::AllEthPhyIntfStatusDir>();
   Lldp::Status::Ptr status = Rex::make<Lldp::Status>();
   CliConfig::Ptr cliConfig = Rex::make<CliConfig>();
   Identity::Dot1x::Status::Ptr dot1x = Rex::make<Identity::Dot1x::Status>();
   Status::Ptr published = Rex::make<Status>();
   Rex::OwnedMachine<NbrClassificationSm> sm;

   NbrClassification() { toggleIs(true); }
   void toggleIs(bool keeps) {
      context.context().toggles["LldpKeepNbrClassificationIntfDown"] = keeps;
   }
   void start() {
      context.traceOn("LldpNbrClassification");
      sm.make(intfs, status, cliConfig, dot1x, published);
   }
   Interface::EthPhyIntfStatus::Ptr intf(const char* name) {
      auto row = Rex::make<Interface::EthPhyIntfStatus>(IntfId(name));
      row->linkStatusIs(Interface::linkUp);
      intfs->intfStatusIs(row);
      return row;
   }
   void parsed() { status->lastPacketParsedTimeIs(context.now()); }
   // A frame of neighbour `index`; no capabilities at all for -1.
   Lldp::RemoteSystem::Ptr hear(const char* port, int index, const EthAddr& ethAddr,
                                int supported = 0x20, uint16_t enabled = 0) {
      Lldp::RemoteSystem::Ptr neighbour;
      Rex::Dispatcher::run([&] {
         auto portStatus = status->portStatusIs(IntfId(port), 0.0);
         neighbour = portStatus->remoteSystemIs(index, Lldp::RemoteSystem::Msap());
         neighbour->ethAddrIs(ethAddr);
         Lldp::SystemCapabilitiesTlv capabilities;
         capabilities.tlvReceived = supported >= 0;
         using Map = decltype(capabilities.supported);
         capabilities.supported = Map(static_cast<uint16_t>(supported < 0 ? 0x20 : supported));
         capabilities.enabled = Map(enabled);
         neighbour->systemCapabilitiesIs(capabilities);
         parsed();
      });
      return neighbour;
   }
   // "<last digit of the address> <interface> <flags>" of each row, with "phone" for a phone.
   std::vector<std::string> rows() {
      std::vector<std::string> all;
      size_t phones = 0;
      for (auto [ethAddr, row] : published->neighbor()) {
         all.push_back(std::string(1, ethAddr.stringValue().view().back()) + " " +
                       row.intfId.stringValue().stdString() + " " +
                       std::to_string(row.classification.flags));
         if (!published->phoneHas(ethAddr)) continue;
         EXPECT_EQ(published->phone(ethAddr), ethAddr);
         all.back() += " phone";
         ++phones;
      }
      EXPECT_EQ(published->phones(), phones);
      return all;
   }
   std::vector<std::string> last() {
      auto texts = context.takeTraces();
      return texts.empty() ? texts : std::vector<std::string>{texts.back()};
   }
};

}  // namespace

TEST_F(NbrClassification, SupportedCapabilityMakesATelephone) {
   start();
   struct {
      const char* what;
      int supported;
      uint16_t enabled;
      bool phone;
   } cases[] = {
       {"no TLV", -1, 0x20, false},       {"supported alone", 0x20, 0, true},
       {"enabled alone", 0, 0x20, false}, {"among others", 0xFFFF, 0, true},
       {"the others", 0xFFDF, 0, false},
   };
   for (const auto& c : cases) {
      hear("Ethernet1", 1, mac1, c.supported, c.enabled);
      EXPECT_EQ(published->phoneHas(mac1), c.phone) << c.what;
      EXPECT_EQ(published->neighborHas(mac1), c.phone) << c.what;
   }
}

TEST_F(NbrClassification, TelephoneMovesIsKeptAndGoes) {
   start();
   hear("Ethernet1", 1, mac1);
   EXPECT_THAT(rows(), ElementsAre("1 Ethernet1 1 phone"));
   // What has not changed is not written again.
   auto log = Rex::make<LldpTest::ChangeLog>(std::vector<Rex::Ptr<const Rex::Entity>>{published});
   hear("Ethernet1", 1, mac1);
   hear("Ethernet2", 1, mac2, 0x04);
   EXPECT_THAT(log->take(), IsEmpty());
   log->close();

   // The port that is met last has the last word.
   hear("Ethernet2", 2, mac1);
   EXPECT_THAT(rows(), ElementsAre("1 Ethernet2 1 phone"));
   hear("Ethernet1", 1, mac1, 0x04);
   EXPECT_THAT(rows(), ElementsAre("1 Ethernet2 1 phone"));
   status->portStatusDel(IntfId("Ethernet2"));
   parsed();
   EXPECT_THAT(rows(), IsEmpty()) << "the other says that it is none";
   hear("Ethernet1", 1, mac1);
   // Neither age nor the port's end takes it away.
   status->portStatus(IntfId("Ethernet1"))->remoteSystemDel(1);
   parsed();
   status->portStatusDel(IntfId("Ethernet1"));
   parsed();
   EXPECT_THAT(rows(), ElementsAre("1 Ethernet1 1 phone"));
   context.takeTraces();
   hear("Ethernet3", 1, mac1, -1);
   EXPECT_THAT(rows(), IsEmpty());
   EXPECT_THAT(context.takeTraces(),
               testing::IsSupersetOf({"Remove Phone (02:00:00:00:00:01)",
                                      "Remove Nbr classification for 02:00:00:00:00:01"}));
}

// A frame that another one of the same reaction overtakes.
TEST_F(NbrClassification, NeighbourThatHasGoneHasNoWord) {
   start();
   auto neighbour = hear("Ethernet1", 1, mac1);
   Rex::Dispatcher::run([&] {
      neighbour->systemCapabilitiesIs({});
      parsed();
      status->portStatus(IntfId("Ethernet1"))->remoteSystemDel(1);
   });
   EXPECT_THAT(rows(), ElementsAre("1 Ethernet1 1 phone"));
}

TEST_F(NbrClassification, OperatorsEntryBeatsWhatIsHeard) {
   cliConfig->neighborIs({mac2, IntfId("Ethernet9"), {telephone, 0}});
   cliConfig->clearRequestIs("early", {1, "admin", "vty1", 0, ""});
   published->neighborIs({EthAddr{2, 0, 0, 0, 0, 9}, IntfId("Ethernet1"), {telephone, 0}});
   published->phoneIs(EthAddr{2, 0, 0, 0, 0, 9}, EthAddr{2, 0, 0, 0, 0, 9});
   hear("Ethernet1", 1, mac1);
   start();
   EXPECT_THAT(rows(), testing::UnorderedElementsAre("1 Ethernet1 1 phone", "2 Ethernet9 1 phone"))
       << "what an earlier process published has gone";
   EXPECT_EQ(published->clearRequestTimes(), 0u) << "a request that stood at the start";

   cliConfig->neighborDel(mac2);
   context.takeTraces();
   cliConfig->neighborIs({mac1, IntfId(), {0, 0}});
   EXPECT_THAT(rows(), ElementsAre("1  0"));
   EXPECT_THAT(context.takeTraces(), Not(Contains("Remove Phone (02:00:00:00:00:01)")));
   parsed();
   EXPECT_THAT(rows(), ElementsAre("1  0"));
   cliConfig->neighborDel(mac1);
   EXPECT_THAT(rows(), ElementsAre("1 Ethernet1 1 phone"));
}

TEST_F(NbrClassification, RequestsClearWhatWasHeard) {
   start();
   cliConfig->neighborIs({mac2, IntfId("Ethernet2"), {telephone, 0}});
   constexpr const char* entry = "2 Ethernet2 1 phone";
   struct {
      uint32_t targetType;
      const char* target;
      bool clears;
   } cases[] = {
       {1, "02:00:00:00:00:01", true},
       {1, "0200.0000.0001", true},
       {1, "no address", false},
       {1, "02:00:00:00:00:02", false},  // the operator's alone
       {2, "Ethernet1", true},
       {2, "ethernet1", false},
       {2, "Et1", false},
       {2, "Ethernet2", false},
       {0, "", true},
       {3, "Ethernet9", true},
   };
   int number = 0;
   for (const auto& c : cases) {
      SCOPED_TRACE(c.target);
      hear("Ethernet1", 1, mac1);
      ASSERT_EQ(rows().size(), 2u) << "any frame adds every phone again";
      context.advance(10);
      Rex::String reqId = Rex::format("%d", ++number);
      cliConfig->clearRequestIs(reqId, {1, "admin", "vty1", c.targetType, c.target});
      EXPECT_EQ(rows().size(), c.clears ? 1u : 2u);
      EXPECT_THAT(rows(), Contains(entry));
      EXPECT_EQ(published->clearRequestTime(reqId), context.now());
      std::string target = c.target;
      EXPECT_THAT(
          last(),
          ElementsAre(c.clears ? "Neighbor classification (" + target + ") cleared by admin on vty1"
                               : "No neighbor classfication for given target " + target));
   }
   // Once, until it is withdrawn and entered again.
   hear("Ethernet1", 1, mac1);
   cliConfig->clearRequestIs("1", {2, "admin", "vty1", 0, ""});
   EXPECT_EQ(rows().size(), 2u);
   EXPECT_THAT(last(),
               ElementsAre("Neighbor Classfication Clean request ignored (already handled)"));
   cliConfig->clearRequestDel("1");
   EXPECT_FALSE(published->clearRequestTimeHas("1"));
   cliConfig->clearRequestIs("1", {2, "admin", "vty1", 0, ""});
   EXPECT_THAT(rows(), ElementsAre(entry));
   hear("Ethernet7", 1, EthAddr{2, 0, 0, 0, 0, 7}, 0x04);
   EXPECT_EQ(rows().size(), 2u) << "the frame of another";
}

TEST_F(NbrClassification, LinkEndsAClassificationWithTheToggleOffAlone) {
   for (bool keeps : {true, false}) {
      SCOPED_TRACE(keeps);
      toggleIs(keeps);
      auto row = intf("Ethernet1");
      start();
      hear("Ethernet1", 1, mac1);
      hear("Ethernet1", 2, mac2);
      row->linkStatusIs(Interface::linkUnknown);
      EXPECT_EQ(rows().size(), 2u) << "not known to be down";
      dot1x->nbrClassificationCacheIs(mac2, true);
      row->linkStatusIs(Interface::linkDown);
      EXPECT_EQ(rows().size(), keeps ? 2u : 1u);
      EXPECT_TRUE(published->phoneHas(mac2)) << "cached";

      // Still heard; then not heard, on a port that is up; then down.
      parsed();
      EXPECT_EQ(rows().size(), 2u);
      row->linkStatusIs(Interface::linkUp);
      status->portStatus(IntfId("Ethernet1"))->remoteSystemDelAll();
      dot1x->nbrClassificationCacheDel(mac2);
      parsed();
      EXPECT_EQ(rows().size(), 2u);
      intfs->intfStatusDel(IntfId("Ethernet1"));
      parsed();
      EXPECT_EQ(rows().size(), keeps ? 2u : 0u);
      sm.reset();
      status->portStatusDelAll();
   }
}
