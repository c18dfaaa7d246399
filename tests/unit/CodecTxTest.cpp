// Building an LLDPDU from the local model.
#include <gmock/gmock.h>

#include "Lldp/LldpProtocol/Tlv.h"
#include "Lldp/LldpProtocol/TxLldpdu.h"
#include "Lldp/LldpProtocolSm/Root.h"
#include "support/CodecPort.h"
#include "support/FrameBuilder.h"
#include "support/TestContext.h"

using namespace LldpTest;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

Lldp::ManagementAddress addressOf(unsigned subtype, const std::string& octets, uint32_t ifNumber) {
   Lldp::ManagementAddress made;
   made.key = {static_cast<uint8_t>(subtype), Lldp::ManAddress(octets.data(), octets.size())};
   made.ifSubtype = 2;
   made.ifNumber = ifNumber;
   return made;
}

class CodecTx : public testing::Test {
 protected:
   CodecTx() {
      context.traceOn("LldpProtocol");
      root->configIs(port.config);
      root->localSystemIs(localSystem);
      localSystem->chassisIdentifierIs(
          {Lldp::ChassisIdSubtype::macAddress, Lldp::ChassisId("abcdef", 6)});
      localPort->portIdentifierIs({Lldp::PortIdSubtype::interfaceName, Lldp::PortId("Et7", 3)});
   }
   // All that the basic TLVs can say.
   void everything() {
      localSystem->sysNameIs(Lldp::BoundedString255(Rex::String("name")));
      localSystem->sysDescIs(Lldp::BoundedString255(Rex::String("description")));
      localSystem->sysCapSupportedIs(0x14);
      localSystem->sysCapEnabledIs(0x04);
      localPort->portDescIs(Lldp::BoundedString255(Rex::String("port")));
      port.portConfig->enabledTlvsIs({0x0F});
      port.portConfig->mgmtAddrTxEnableIs(true);
      localSystem->ip6ManagementAddressIs(addressOf(2, ip6, 5));
      port.config->maxTxMgmtAddrsIs(0xFFFFFFFF);
      uint32_t rank = 0;
      for (const char* octets : {"addA", "addB", "addC"}) {
         auto address = addressOf(1, octets, ++rank);
         localSystem->managementAddressIs(address);
         localSystem->managementAddressPrioIs({.primaryPriority = 10 - rank}, address.key);
      }
   }
   void external(uint32_t oui, uint32_t subtype, uint32_t index, const std::string& info) {
      localPort->unknownOrgDefTlvIs(
          {{{oui}, subtype, index}, Lldp::BoundedString507(info.data(), info.size())});
   }
   // Builds into a buffer of that many octets; checks that no octet behind is touched.
   std::string build(size_t room = 1500) {
      context.traces.clear();
      std::string buffer(room + 16, '#');
      char* tail = Lldp::Agent::buildTxLldpdu(buffer.data(), buffer.data() + room, root, localPort,
                                              port.portConfig, port.portStatus);
      EXPECT_EQ(buffer.substr(room), std::string(16, '#'));
      EXPECT_EQ(Lldp::Agent::infoBuf, nullptr);
      return buffer.substr(0, static_cast<size_t>(tail - buffer.data()));
   }

   const std::string ip6 = std::string(16, '6');
   const std::string head = chassisId(4, "abcdef") + portId(5, "Et7") + timeToLive(120);
   const std::string basic = head + tlv(4, "port") + tlv(5, "name") + tlv(6, "description") +
                             systemCapabilities(0x14, 0x04);
   TestContext context;
   CodecPort port;
   Lldp::LocalSystem::Ptr localSystem = Rex::make<Lldp::LocalSystem>();
   Lldp::LocalPort::Ptr localPort = localSystem->localPortIs(port.intfId);
   Rex::Ptr<Lldp::Agent::Protocol::Root> root =
       Rex::make<Lldp::Agent::Protocol::Root>("protocolRoot");
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

// What fits is there and nothing else is lost, whatever the room is.
TEST_F(CodecTx, EveryRoomGivesASoundFrame) {
   everything();
   external(0xABCDEF, 1, 1, std::string(60, 'l'));
   external(0xABCDEF, 2, 1, "small");
   std::vector<std::string> addresses = {
       managementAddress(2, ip6, 5), managementAddress(1, "addC", 3),
       managementAddress(1, "addB", 2), managementAddress(1, "addA", 1)};
   std::vector<std::string> externals = {organization(0xABCDEF, 1, std::string(60, 'l')),
                                         organization(0xABCDEF, 2, "small")};
   bool lostOnlyTheLarge = false;
   size_t full = 0;
   for (size_t room = basic.size() + 2; full == 0; ++room) {
      SCOPED_TRACE(room);
      std::string expected = basic;
      bool lost = false;
      for (const auto& address : addresses) {
         // The first that does not fit ends the addresses.
         if (lost || expected.size() + address.size() > room - 2) {
            lost = true;
         } else {
            expected += address;
         }
      }
      std::vector<bool> sent;
      for (const auto& tlv : externals) {
         sent.push_back(expected.size() + tlv.size() <= room - 2);
         if (sent.back()) expected += tlv;
      }
      lostOnlyTheLarge |= !sent[0] && sent[1];
      lost |= !sent[0] || !sent[1];
      uint32_t exceeded = port.portStatus->txFramesLengthExceeded();
      EXPECT_EQ(build(room), expected + endOfLldpdu());
      EXPECT_EQ(port.portStatus->txFramesLengthExceeded(), exceeded + lost);
      if (!lost) full = room;
   }
   EXPECT_TRUE(lostOnlyTheLarge);
   EXPECT_EQ(build(full + 1), build(full));
}

TEST_F(CodecTx, WithoutIdentifiersOrRoomForThemTheProcessEnds) {
   EXPECT_DEATH(build(head.size()), "success");
   localPort->portIdentifierIs({});
   EXPECT_DEATH(build(), "false");
}

TEST_F(CodecTx, WhatIsSentIsUnderstood) {
   everything();
   external(0xABCDEF, 1, 1, "external");
   CodecPort peer;
   auto neighbour = peer.receive(build());
   ASSERT_TRUE(neighbour);
   EXPECT_EQ(peer.portStatus->rxFramesErrors(), 0u);
   EXPECT_EQ(neighbour->chassisId(), localSystem->chassisIdentifier());
   EXPECT_EQ(neighbour->msap().portIdentifier, localPort->portIdentifier());
   EXPECT_EQ(neighbour->ttl(), 120);
   EXPECT_EQ(neighbour->portDesc().tlvInfo, localPort->portDesc());
   EXPECT_EQ(neighbour->sysName().tlvInfo, localSystem->sysName());
   EXPECT_EQ(neighbour->sysDesc().tlvInfo, localSystem->sysDesc());
   EXPECT_EQ(neighbour->systemCapabilities(), Lldp::SystemCapabilitiesTlv::create(0x14, 0x04));
   EXPECT_EQ(neighbour->managementAddresss(), 4u);
   for (auto [key, address] : localSystem->managementAddress()) {
      EXPECT_EQ(neighbour->managementAddress(key), address);
   }
   EXPECT_EQ(neighbour->managementAddress(localSystem->ip6ManagementAddress().key),
             localSystem->ip6ManagementAddress());
   for (auto [key, tlv] : localPort->unknownOrgDefTlv()) {
      EXPECT_EQ(neighbour->unknownOrgDefTlv(key), tlv);
   }
}

}  // namespace
