// The receive side of a port: which frames are taken, the rate limit, and how neighbours end.
#include <gmock/gmock.h>

#include "support/Engine.h"
#include "support/FrameBuilder.h"
#include "support/TestContext.h"

namespace {

using Lldp::AdminStatus;
using LldpTest::Engine;
using LldpTest::ethFrame;
using LldpTest::mandatory;
using LldpTest::TestContext;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr double start = TestContext::start;
constexpr Wirekit::VlanTag tag{0x8100, 0x2064};  // VLAN 100
const std::string inlineTag("\x81\x00\x20\x64\x88\xCC", 6);

class LldpPamSmRx : public testing::Test {
 protected:
   LldpPamSmRx() {
      engine.open();
      context.settle();
   }
   Rex::Ptr<Lldp::Agent::Protocol::LldpPamSm> sm() { return engine.sm(port.intfId); }

   // Hands a frame to the port behind the device and its socket filter.
   void receive(const std::string& frame, std::optional<Wirekit::VlanTag> separate = {}) {
      ASSERT_TRUE(engine.pam(port.intfId)->rxFrameIs(LldpTest::octetsOf(frame), separate));
      context.settle();
   }
   void receiveLldpdu(uint32_t neighbour, unsigned ttl = 120) {
      receive(ethFrame(mandatory(neighbour, ttl)));
   }
   size_t neighbours() { return port.portStatus->remoteSystems(); }

   TestContext context;
   Engine engine;
   Engine::Port port = engine.port("Ethernet1");
};

TEST_F(LldpPamSmRx, TagHandling) {
   const std::string otherType("\x81\0\x20\x64\x08\0", 6);
   const std::string twoTags("\x81\0\x20\x64\x81\0\0\x01\x88\xCC", 10);
   const std::string serviceTag("\x88\xA8\x20\x64\x88\xCC", 6);
   struct {
      const char* what;
      bool drop;
      bool separate;
      std::string header;  // from behind the addresses
      bool taken;
   } cases[] = {
       {"untagged", false, false, "\x88\xCC", true},
       {"untagged, drop", true, false, "\x88\xCC", true},
       {"another type", false, false, "\x88\xCD", false},
       {"separate", false, true, "\x88\xCC", true},
       {"separate, drop", true, true, "\x88\xCC", true},
       {"separate, another type", false, true, "\x88\xCD", false},
       {"separate, then in line", false, true, inlineTag, false},
       {"in line", false, false, inlineTag, true},
       {"in line, drop", true, false, inlineTag, false},
       {"in line, another type", false, false, otherType, false},
       {"two in line", false, false, twoTags, false},
       {"service tag in line", false, false, serviceTag, false},
   };
   uint32_t neighbour = 0;
   for (const auto& c : cases) {
      SCOPED_TRACE(c.what);
      engine.config->rxTaggedPacketsDropIs(c.drop);
      uint64_t taken = sm()->rxLldpdus();
      size_t before = neighbours();
      receive(ethFrame(mandatory(++neighbour), c.header),
              c.separate ? std::optional(tag) : std::nullopt);
      EXPECT_EQ(neighbours() - before, c.taken);
      EXPECT_EQ(sm()->rxLldpdus() - taken, c.taken);
   }
   EXPECT_EQ(port.portStatus->rxFramesTotal(), sm()->rxLldpdus()) << "only LLDPDUs are counted";
}

TEST_F(LldpPamSmRx, FrameThatEndsInItsTagIsRefused) {
   for (size_t length = 14; length < 18; ++length) {
      receive(ethFrame("", inlineTag).substr(0, length));
   }
   EXPECT_EQ(sm()->rxLldpdus(), 0u);
   receive(ethFrame("", inlineTag));
   EXPECT_EQ(sm()->rxLldpdus(), 1u);
   EXPECT_EQ(port.portStatus->rxFramesErrors(), 1u) << "an LLDPDU of no octets";
}

TEST_F(LldpPamSmRx, DestinationIsLookedAtBeforeTheType) {
   context.traceOn("LldpAgent", 1 << 2);
   receive(ethFrame(mandatory(), "\x08\x08", "\x01\x80\xC2\xFF\xFF\x03"));
   EXPECT_THAT(context.takeTraces(), ElementsAre("Received frame with incorrect DMAC -- ignoring"));
   for (const char* dst : {"\x01\x80\xC2\xFF\xFF\x0E", "\x02\x01\x01\x01\x01\x07"}) {
      receive(ethFrame(mandatory(), "\x88\xCC", dst));
   }
   EXPECT_EQ(sm()->rxLldpdus(), 0u);
}

TEST_F(LldpPamSmRx, AdminStatusDecidesAboutReceivingAndKeepsNeighbours) {
   struct {
      AdminStatus status;
      bool receives;
   } cases[] = {{AdminStatus::txAndRx, true},
                {AdminStatus::rxOnly, true},
                {AdminStatus::txOnly, false},
                {AdminStatus::disabled, false},
                {static_cast<AdminStatus>(0), false}};
   uint32_t neighbour = 0;
   size_t learned = 0;
   for (const auto& c : cases) {
      port.portConfig->adminStatusIs(c.status);
      receiveLldpdu(++neighbour);
      learned += c.receives;
      EXPECT_EQ(neighbours(), learned) << "status " << int(c.status);
   }
   EXPECT_EQ(port.portStatus->rxFramesTotal(), learned);
}

TEST_F(LldpPamSmRx, NeighbourHasTheFramesSourceAddress) {
   receive(ethFrame(mandatory(), inlineTag));
   EXPECT_EQ(port.portStatus->remoteSystem(1)->ethAddr(), Wirekit::EthAddr(2, 0, 0, 0, 0, 0x99));
}

TEST_F(LldpPamSmRx, TakesOneFrameInEachTurn) {
   context.traceOn("LldpAgent", 1 << 0);
   auto pam = engine.pam(port.intfId);
   for (uint32_t n = 1; n <= 3; ++n) {
      pam->rxFrameIs(LldpTest::octetsOf(ethFrame(mandatory(n))), {});
   }
   for (size_t taken = 1; taken <= 3; ++taken) {
      context.context().clock()->runDue();
      EXPECT_EQ(neighbours(), taken);
   }
   EXPECT_THAT(context.takeTraces(), IsEmpty());
   pam->readableCountInc(1);
   EXPECT_THAT(context.takeTraces(), ElementsAre("Error receiving frame"));
   EXPECT_EQ(sm()->rxLldpdus(), 3u);
}

TEST_F(LldpPamSmRx, RateLimitDropsAllBehindTheAllowanceOfAPeriod) {
   port.portConfig->rxRateLimitCountIs(10);
   for (uint32_t n = 1; n <= 10; ++n) receiveLldpdu(n);
   context.takeLogs();
   receiveLldpdu(11);
   EXPECT_THAT(context.takeLogs(), ElementsAre("LLDP_RX_RATELIMIT: Exceeded Rx LLDPDU rate limit "
                                               "on Ethernet1 (more than 10 LLDPDUs in "
                                               "10.000000 seconds)"));
   receiveLldpdu(12);
   EXPECT_THAT(context.takeLogs(), IsEmpty());
   EXPECT_EQ(neighbours(), 10u);
   EXPECT_EQ(port.portStatus->rxFramesTotal(), 10u);
   EXPECT_EQ(sm()->rxLldpdus(), 12u);
   EXPECT_EQ(sm()->rxLldpdusRateLimited(), 2u);

   context.advanceTo(start + 9.999);
   EXPECT_EQ(sm()->rxLldpdus(), 12u);
   context.advanceTo(start + 10);
   EXPECT_EQ(sm()->rxLldpdus(), 0u) << "the periods follow one another from the machine's start";
   receiveLldpdu(11);
   EXPECT_EQ(neighbours(), 11u);
   EXPECT_EQ(sm()->rxLldpdusRateLimited(), 2u) << "never reset";
}

TEST_F(LldpPamSmRx, FramesThatAreRefusedUseUpNoAllowance) {
   port.portConfig->rxRateLimitCountIs(1);
   for (int n = 0; n < 5; ++n) receive(ethFrame(mandatory(), "\x08\x08"));
   receiveLldpdu(1);
   EXPECT_EQ(neighbours(), 1u);
}

TEST_F(LldpPamSmRx, CountsAndResetsWithoutALimitToo) {
   port.portConfig->rxRateLimitEnabledIs(false);
   port.portConfig->rxRateLimitCountIs(1);
   port.portConfig->rxRateLimitIntervalIs(3);
   for (uint32_t n = 1; n <= 4; ++n) receiveLldpdu(n);
   EXPECT_EQ(neighbours(), 4u);
   EXPECT_EQ(sm()->rxLldpdus(), 4u);
   context.advanceTo(start + 10);  // armed with the interval that stood then
   EXPECT_EQ(sm()->rxLldpdus(), 0u);
   receiveLldpdu(1);
   context.advanceTo(start + 13);
   EXPECT_EQ(sm()->rxLldpdus(), 0u);
   EXPECT_EQ(sm()->rxLldpdusRateLimited(), 0u);
}

TEST_F(LldpPamSmRx, AgeClockStandsAtTheEarliestExpiry) {
   EXPECT_EQ(sm()->ageClock().timeMin(), Rex::never);
   receiveLldpdu(1, 100);
   EXPECT_EQ(sm()->ageClock().timeMin(), start + 100);
   receiveLldpdu(2, 50);
   EXPECT_EQ(sm()->ageClock().timeMin(), start + 50);
   receiveLldpdu(3, 80);
   EXPECT_EQ(sm()->ageClock().timeMin(), start + 50);
   context.advanceTo(start + 40);
   receiveLldpdu(2, 50);
   EXPECT_EQ(sm()->ageClock().timeMin(), start + 50) << "a refresh never moves it later";
   context.advanceTo(start + 50);
   EXPECT_EQ(neighbours(), 3u);
   EXPECT_EQ(sm()->ageClock().timeMin(), start + 80);
   receiveLldpdu(4, 0);  // a shutdown frame of a stranger
   EXPECT_EQ(sm()->ageClock().timeMin(), start + 80);
}

TEST_F(LldpPamSmRx, NeighboursThatExpireTogetherGoTogetherEachForItself) {
   receiveLldpdu(1, 20);
   receiveLldpdu(2, 20);
   receiveLldpdu(3, 21);
   context.takeLogs();
   context.advanceTo(start + 19.999);
   EXPECT_EQ(neighbours(), 3u);
   context.advanceTo(start + 20);
   EXPECT_EQ(neighbours(), 1u);
   EXPECT_EQ(port.portStatus->remoteSystemByMsaps(), 1u);
   EXPECT_EQ(port.portStatus->rxAgeoutsTotal(), 2u);
   EXPECT_EQ(engine.status->remTablesAgeouts(), 2u);
   EXPECT_EQ(engine.status->remTablesDeletes(), 2u);
   EXPECT_EQ(engine.status->remTablesLastChangeTime(), start + 20);
   EXPECT_THAT(context.takeLogs(),
               ElementsAre("LLDP_NEIGHBOR_TIMEOUT: LLDP neighbor with chassisId 02:00:00:00:00:01 "
                           "and portId Ethernet1 timed out on interface Ethernet1",
                           "LLDP_NEIGHBOR_TIMEOUT: LLDP neighbor with chassisId 02:00:00:00:00:02 "
                           "and portId Ethernet1 timed out on interface Ethernet1"));
   EXPECT_EQ(sm()->ageClock().timeMin(), start + 21);
   context.advanceTo(start + 21);
   EXPECT_EQ(sm()->ageClock().timeMin(), Rex::never);
}

TEST_F(LldpPamSmRx, NeighboursThatStandWhenTheMachineStartsAgeToo) {
   Engine another;
   auto itsPort = another.port("Ethernet2");
   Lldp::RemoteSystem::Msap msap{{Lldp::ChassisIdSubtype::local, Lldp::ChassisId("c", 1)},
                                 {Lldp::PortIdSubtype::local, Lldp::PortId("p", 1)}};
   auto stale = itsPort.portStatus->remoteSystemIs(1, msap);
   itsPort.portStatus->remoteSystemByMsapIs(stale);
   stale->expiryTimeIs(start - 5);
   msap.portIdentifier.value = Lldp::PortId("q", 1);
   auto fresh = itsPort.portStatus->remoteSystemIs(2, msap);
   itsPort.portStatus->remoteSystemByMsapIs(fresh);
   fresh->expiryTimeIs(start + 7);
   another.open();
   context.settle();
   EXPECT_EQ(itsPort.portStatus->remoteSystems(), 1u);
   EXPECT_EQ(another.sm(itsPort.intfId)->ageClock().timeMin(), start + 7);
}

TEST_F(LldpPamSmRx, LinkDownRemovesNeighboursAndAnUnknownLinkKeepsThem) {
   for (uint32_t n = 1; n <= 3; ++n) receiveLldpdu(n);
   context.takeLogs();
   port.ethPhyIntfStatus->linkStatusIs(Interface::linkUnknown);
   EXPECT_EQ(neighbours(), 3u);
   context.advanceTo(start + 5);
   port.ethPhyIntfStatus->linkStatusIs(Interface::linkDown);
   EXPECT_EQ(neighbours(), 0u);
   EXPECT_EQ(port.portStatus->remoteSystemByMsaps(), 0u);
   EXPECT_EQ(engine.status->remTablesDeletes(), 3u);
   EXPECT_EQ(engine.status->remTablesAgeouts(), 0u);
   EXPECT_EQ(port.portStatus->rxAgeoutsTotal(), 0u);
   EXPECT_EQ(engine.status->remTablesLastChangeTime(), start + 5);
   EXPECT_THAT(context.takeLogs(), IsEmpty());
   EXPECT_EQ(sm()->ageClock().timeMin(), start + 120) << "left alone";
   context.advanceTo(start + 120);
   EXPECT_EQ(sm()->ageClock().timeMin(), Rex::never);
}

using LldpPamSmRxDeath = LldpPamSmRx;

TEST_F(LldpPamSmRxDeath, FrameWithoutAHeaderWouldMeanThatTheFilterIsBroken) {
   EXPECT_DEATH(receive("\x01\x80\xC2"), "pkt->bytes\\(\\) >= sizeof");
}

}  // namespace
