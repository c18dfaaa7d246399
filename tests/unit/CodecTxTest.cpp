// Building an LLDPDU from the local model.
#include <gmock/gmock.h>

#include "Lldp/LldpProtocol/Compare.h"
#include "Lldp/LldpProtocol/Tlv.h"
#include "support/RoundTrip.h"
#include "support/TestContext.h"

using namespace LldpTest;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

struct InContext : testing::Test {
   TestContext context;
};

struct CodecTx : InContext, CodecSender {
   CodecTx() { context.traceOn("LldpProtocol"); }

   void everything() {
      sayBasics();
      localSystem->ip6ManagementAddressIs(addressOf(2, ip6, 5));
   }
   // Builds into a buffer of that many octets; checks that no octet behind is touched.
   std::string build(size_t room = 1500) {
      context.traces.clear();
      std::string buffer(room + 16, '#');
      char* tail = CodecSender::build(buffer.data(), buffer.data() + room);
      EXPECT_EQ(buffer.substr(room), std::string(16, '#'));
      EXPECT_EQ(Lldp::Agent::infoBuf, nullptr);
      return buffer.substr(0, static_cast<size_t>(tail - buffer.data()));
   }

   const std::string ip6 = std::string(16, '6');
   const std::string head = chassisId(4, "abcdef") + portId(5, "Et7") + timeToLive(120);
   const std::string basic = head + tlv(4, "port") + tlv(5, "name") + tlv(6, "description") +
                             systemCapabilities(0x14, 0x04);
};

TEST_F(CodecTx, MandatoryTlvsAloneWhenNothingIsEnabled) {
   EXPECT_EQ(build(), head + endOfLldpdu());
   EXPECT_EQ(port.portStatus->txFramesTotal(), 1u);
   EXPECT_EQ(port.portStatus->txFramesLengthExceeded(), 0u);
   EXPECT_EQ(port.portStatus->lastTxTime(), context.now());
   EXPECT_THAT(context.traced(6),
               ElementsAre("Added Chassis ID: 61:62:63:64:65:66", "Added Port ID: Et7",
                           "Added TTL: 120", "Added End of LLDPDU"));
}

TEST_F(CodecTx, EnabledTlvsStandInTheirOrder) {
   everything();
   external(0xABCDEF, 2, 1, "two");
   external(0xABCDEF, 1, 2, "one, again");
   external(0xABCDEF, 1, 1, "one");
   EXPECT_EQ(build(), basic + managementAddress(2, ip6, 5) + managementAddress(1, "addC", 3) +
                          managementAddress(1, "addB", 2) + managementAddress(1, "addA", 1) +
                          organization(0xABCDEF, 1, "one") +
                          organization(0xABCDEF, 1, "one, again") +
                          organization(0xABCDEF, 2, "two") + endOfLldpdu());
   EXPECT_EQ(port.portStatus->txFramesLengthExceeded(), 0u);
}

TEST_F(CodecTx, EachBasicTlvHasItsGate) {
   everything();
   port.portConfig->mgmtAddrTxEnableIs(false);
   const std::string end = endOfLldpdu();
   struct {
      uint32_t enabled;
      std::string tlvs;
   } rows[] = {{0x01, tlv(4, "port")},
               {0x02, tlv(5, "name")},
               {0x04, tlv(6, "description")},
               {0x08, systemCapabilities(0x14, 0x04)}};
   for (const auto& row : rows) {
      port.portConfig->enabledTlvsIs({row.enabled});
      EXPECT_EQ(build(), head + row.tlvs + end);
   }
   // An empty text sends nothing and loses nothing.
   localSystem->sysNameIs({});
   localSystem->sysDescIs({});
   localPort->portDescIs({});
   port.portConfig->enabledTlvsIs({0x07});
   EXPECT_EQ(build(), head + end);
   EXPECT_EQ(port.portStatus->txFramesLengthExceeded(), 0u);
}

TEST_F(CodecTx, HoldTimeIsCutToTheField) {
   port.config->messageTxHoldTimeIs(65536 + 300);
   EXPECT_EQ(build(), chassisId(4, "abcdef") + portId(5, "Et7") + timeToLive(300) + endOfLldpdu());
}

TEST_F(CodecTx, ManagementAddressesAreLimited) {
   everything();
   port.portConfig->enabledTlvsIs({});
   const std::string six = managementAddress(2, ip6, 5);
   const std::string c = managementAddress(1, "addC", 3);
   const std::string b = managementAddress(1, "addB", 2);
   const std::string a = managementAddress(1, "addA", 1);
   struct {
      uint32_t limit;
      std::string tlvs;
   } rows[] = {{0, six}, {1, six + c}, {2, six + c + b}, {0xFFFFFFFF, six + c + b + a}};
   for (const auto& row : rows) {
      port.config->maxTxMgmtAddrsIs(row.limit);
      EXPECT_EQ(build(), head + row.tlvs + endOfLldpdu());
   }
   // A rank whose address is gone takes its turn and sends nothing.
   localSystem->managementAddressDel(addressOf(1, "addC", 3).key);
   port.config->maxTxMgmtAddrsIs(2);
   EXPECT_EQ(build(), head + six + b + endOfLldpdu());
   localSystem->ip6ManagementAddressIs({});
   EXPECT_EQ(build(), head + b + endOfLldpdu());
   EXPECT_EQ(port.portStatus->txFramesLengthExceeded(), 0u);
}

TEST_F(CodecTx, CeeTlvCarriesTheAcknowledgementAndEndsTheExternalOnes) {
   port.portStatus->ceeSeqNumToAckIs(0xA1B2C3D4);
   std::string composed = "headVV" + be32(7) + "....behind";
   composed.resize(20, 'x');
   external(0x001B20, 9, 1, "before");
   external(0x001B21, 2, 1, composed);
   external(0x001B21, 2, 2, "not sent");
   external(0xABCDEF, 1, 1, "not sent either");
   std::string patched = composed;
   patched.replace(8, 4, be32(0xA1B2C3D4));
   EXPECT_EQ(build(), head + organization(0x001B20, 9, "before") +
                          organization(0x001B21, 2, patched) + endOfLldpdu());
   EXPECT_EQ(port.portStatus->txFramesLengthExceeded(), 0u);
   EXPECT_EQ(context.traced(2).size(), 4u);

   // One that is too short is sent as long as it is.
   external(0x001B21, 2, 1, "short");
   EXPECT_EQ(build(), head + organization(0x001B20, 9, "before") +
                          organization(0x001B21, 2, "short") + endOfLldpdu());
   // The longest one fits the scratch space.
   external(0x001B21, 2, 1, std::string(507, 'l'));
   EXPECT_EQ(build().size(), head.size() + 2 + 4 + 6 + 2 + 511 + 2);
}

TEST_F(CodecTx, OrganisationTlvsHaveTheirGatesAndOrder) {
   sayOrganisations();
   auto& config = *port.portConfig;
   const std::string pvid = organization(dot1, 1, be16(100));
   // A type 2 PSE: class 4 on the spare pair, high priority, 24 W asked for, 25.5 W given.
   const std::string power =
       organization(dot3, 2, be8(7) + be8(2) + be8(5) + be8(0x12) + be16(240) + be16(255));
   const std::string aggregation = organization(dot3, 3, be8(3) + be32(1000007));
   const std::string frameSize = organization(dot3, 4, be16(9236));
   const std::string capabilities = organization(tia, 1, be16(3) + be8(4));
   // Of an untagged policy neither VLAN nor priority is sent.
   const std::string policies =
       organization(tia, 2, be32(0x015FFD6E)) + organization(tia, 2, be32(0x0200003F));
   EXPECT_EQ(build(), head + pvid + power + aggregation + frameSize + capabilities + policies +
                          endOfLldpdu());
   config.portVlanTxEnableIs(false);
   config.tiaEnabledTlvsIs({});
   EXPECT_EQ(build(), head + power + aggregation + frameSize + policies + endOfLldpdu());
   // The neighbour that spoke LLDP-MED is gone: with it the TLVs, but for a configured fallback.
   port.receive(mandatory(9, 0));
   config.dot3EnabledTlvsIs({0x0C});
   EXPECT_EQ(build(), head + aggregation + frameSize + endOfLldpdu());
   config.poeAllocatedPowerFallbackIs(1);
   config.dot3EnabledTlvsIs({});
   EXPECT_EQ(build(), head + policies + endOfLldpdu());
   EXPECT_EQ(port.portStatus->txFramesLengthExceeded(), 0u);
   // No VLAN is sent as 0; what nothing can build ends the process.
   config.portVlanTxEnableIs(true);
   localPort->portVlanIdIs({});
   EXPECT_EQ(build(), head + organization(dot1, 1, be16(0)) + policies + endOfLldpdu());
   config.dot3EnabledTlvsIs({0x01});
   EXPECT_DEATH(build(), "macPhyConfigStatus");
}

TEST_F(CodecTx, PowerViaMdiByWhatIsKnown) {
   using namespace Environment::Power;
   auto request = [](unsigned power) {
      return organization(dot3, 2, be32(0) + be16(power) + be16(0));
   };
   port.portConfig->dot3EnabledTlvsIs({0x02});
   // A neighbour that sends the TLV, which the power agent may have chosen.
   enum Asks { nobody, one, chosen };
   struct {
      const char* label;
      PoePortStatus::PortStatus status;
      uint32_t fallback;
      Asks asks;
      const char* info;
   } rows[] = {
       {"nothing known", {}, 0, one, ""},
       {"disabled", {poePortDisabled, 154, 4}, 99, nobody, "030105"},
       {"fault", {poePortFault, 154, 9, poePowerPairSpare}, 0, nobody, "030205"},
       {"searching", {poePortSearching, 154}, 0, nobody, "070101"},
       {"not fed yet", {poePortSearching, 255, 4}, 0, chosen, "0701051000F00000"},
       {"type 1", {poePortDelivering, 130, 3, {}, poePriorityLow}, 0, chosen, "0701049300F00082"},
       {"type 2", {poePortDelivering, 131, 4, {}, poePriorityCritical}, 0, one, "0701051100000083"},
       {"above the field", {poePortDelivering, 70000, 4}, 0, chosen, "0701051000F003E7"},
       {"fallback, nobody asks", {}, 300, nobody, "070101"},
       {"fallback, nobody chosen", {}, 300, one, "070101100000012C"},
       {"fallback", {}, 300, chosen, "0701011000F0012C"},
   };
   for (const auto& row : rows) {
      SCOPED_TRACE(row.label);
      auto neighbour = port.receive(mandatory(9) + (row.asks == nobody ? "" : request(240)));
      localPort->localPortPoeInfo()->poePortStatusIs(row.status);
      localPort->localPortPoeInfo()->remoteSystemIs(row.asks == chosen ? neighbour : nullptr);
      port.portConfig->poeAllocatedPowerFallbackIs(row.fallback);
      std::string info = octets(row.info);
      EXPECT_EQ(build(), head + (info.empty() ? "" : organization(dot3, 2, info)) + endOfLldpdu());
   }
   // A request that the field cannot hold is not repeated as it came.
   auto greedy = port.receive(mandatory(8) + request(0xFFFF));
   localPort->localPortPoeInfo()->remoteSystemIs(greedy);
   EXPECT_EQ(build(), head + organization(dot3, 2, octets("0701011003E7012C")) + endOfLldpdu());
   localPort->localPortPoeInfoIs(nullptr);
   EXPECT_EQ(build(), head + endOfLldpdu());
}

// What fits is there and nothing else is lost, whatever the room is. One of a chain that does not
// fit ends its chain.
TEST_F(CodecTx, EveryRoomGivesASoundFrame) {
   everything();
   sayOrganisations();
   external(0xABCDEF, 1, 1, std::string(60, 'l'));
   external(0xABCDEF, 2, 1, "s");
   enum Chain { alone, addresses, policies };
   std::vector<Chain> chains = {addresses, addresses, addresses, addresses, alone, alone, alone,
                                alone,     alone,     policies,  policies,  alone, alone};
   std::string whole = build();
   std::vector<std::string> tlvs;
   for (size_t at = basic.size(); at < whole.size() - 2; at += tlvs.back().size()) {
      size_t infoLen = (whole[at] & 1) << 8 | static_cast<uint8_t>(whole[at + 1]);
      tlvs.push_back(whole.substr(at, 2 + infoLen));
   }
   ASSERT_EQ(tlvs.size(), chains.size());
   size_t skipped = 0;  // rooms in which a TLV went behind one that did not fit
   for (size_t room = basic.size() + 2; room <= whole.size() + 1; ++room) {
      SCOPED_TRACE(room);
      std::string expected = basic;
      bool lost = false, after = false;
      bool ended[] = {false, false, false};
      for (size_t at = 0; at < tlvs.size(); ++at) {
         bool fits = expected.size() + tlvs[at].size() <= room - 2 && !ended[chains[at]];
         after |= lost && fits;
         if (fits) expected += tlvs[at];
         if (!fits && chains[at] != alone) ended[chains[at]] = true;
         lost |= !fits;
      }
      skipped += after;
      uint32_t exceeded = port.portStatus->txFramesLengthExceeded();
      EXPECT_EQ(build(room), expected + endOfLldpdu());
      EXPECT_EQ(port.portStatus->txFramesLengthExceeded(), exceeded + lost);
   }
   EXPECT_GT(skipped, 0u);
}

TEST_F(CodecTx, WithoutIdentifiersOrRoomForThemTheProcessEnds) {
   EXPECT_DEATH(build(head.size()), "success");
   localPort->portIdentifierIs({});
   EXPECT_DEATH(build(), "false");
}

TEST_F(CodecTx, WhatIsSentIsUnderstood) {
   everything();
   sayOrganisations();
   external(0x001B20, 1, 1, "external");
   external(cee, 2, 1, be32(0x02020101) + be32(77) + be32(0) + "feature");
   CodecPort peer;
   auto neighbour = peer.receive(build());
   ASSERT_TRUE(neighbour);
   EXPECT_EQ(peer.portStatus->rxFramesErrors(), 0u);
   auto expected = asUnderstood(*this);
   expected->managementAddressIs(localSystem->ip6ManagementAddress());
   EXPECT_EQ(neighbour->msap(), expected->msap());
   EXPECT_EQ(neighbour->ttl(), 120);
   // Nothing differs, or the trace says what.
   context.traces.clear();
   Lldp::Agent::copyChanges(*neighbour, *expected);
   EXPECT_THAT(context.traced(8), IsEmpty());
   EXPECT_EQ(peer.portStatus->ceeSeqNumToAck(), 77u);
   EXPECT_EQ(neighbour->powerViaMdiInfo(), (Lldp::PowerViaMdiInfo{1, 0, 7, 2, 5, 1, 2, 240, 255}));
}

}  // namespace
