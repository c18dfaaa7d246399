// The optional TLVs of a received frame, each alone.
#include "support/TlvFixture.h"

using namespace LldpTest;

namespace {

using CodecOptionalTlvs = TlvFixture;

TEST_F(CodecOptionalTlvs, TextsAreCutAndTheLastOneStands) {
   for (size_t length : {0u, 1u, 255u, 256u, 511u}) {
      CodecPort port;
      std::string text(length, 'x');
      auto neighbour = port.receive(mandatory() + tlv(4, "first") + tlv(4, text) + tlv(5, text) +
                                    tlv(6, text) + endOfLldpdu());
      ASSERT_TRUE(neighbour);
      for (const auto& got : {neighbour->portDesc(), neighbour->sysName(), neighbour->sysDesc()}) {
         EXPECT_TRUE(got.tlvReceived);
         EXPECT_EQ(got.tlvInfo.bytes(), std::min<size_t>(length, 255));
      }
      EXPECT_EQ(port.portStatus->rxFramesErrors(), 0u);
   }
}

TEST_F(CodecOptionalTlvs, NothingBehindTheEndIsRead) {
   for (const std::string& end : {endOfLldpdu(), tlv(0, "with octets")}) {
      CodecPort port;
      EXPECT_TRUE(port.receive(mandatory() + end + timeToLive(1) + "\xFF"));
      EXPECT_EQ(port.portStatus->rxFramesErrors(), 0u);
   }
}

TEST_F(CodecOptionalTlvs, SystemCapabilities) {
   const std::string inconsistent = "Error: Supported and enabled capabilities are inconsistent ";
   expect(systemCapabilities(0x14, 0x10), ok);
   expect(tlv(7, be32(0x00140014) + "longer"), ok);
   expect(systemCapabilities(0x10, 0x14), error, inconsistent + "(supported=0x10, enabled=0x14)");
   expect(systemCapabilities(0x14, 0x08), error, inconsistent + "(supported=0x14, enabled=0x8)");
   for (unsigned n = 0; n < 4; ++n) {
      expect(tlv(7, std::string(n, 'x')), fatal,
             "Error: System Capabilities TLV is too short (infoLen=" + std::to_string(n) + ")");
   }
   // A bad one in a later frame is as good as none.
   CodecPort port;
   auto neighbour = port.receive(mandatory() + systemCapabilities(0x14, 0x10));
   EXPECT_EQ(neighbour->systemCapabilities().supported.value(), 0x14);
   EXPECT_EQ(neighbour->systemCapabilities().enabled.value(), 0x10);
   context.advance(1);
   port.receive(mandatory() + systemCapabilities(0x10, 0x14));
   EXPECT_FALSE(neighbour->systemCapabilities().tlvReceived);
   EXPECT_EQ(neighbour->lastChangeTime(), context.now());
}

TEST_F(CodecOptionalTlvs, ManagementAddressHasItsRanges) {
   auto address = [](unsigned length, size_t octets, unsigned oidLength, size_t oidOctets) {
      return tlv(8, be8(length) + be8(1) + std::string(octets, 'a') + be8(2) + be32(7) +
                        be8(oidLength) + std::string(oidOctets, '\x01'));
   };
   const std::string lengthWords =
       "Error: Value of management address string length field is out of range "
       "(manAddrStringLen=";
   const std::string oidWords =
       "Error: Value of OID string length field is out of range (oidStringLen=";
   expect(address(2, 1, 0, 0), ok);
   expect(address(32, 31, 128, 128), ok);
   expect(address(0, 4, 0, 0), error, lengthWords + "0)");
   expect(address(1, 4, 0, 0), error, lengthWords + "1)");
   expect(address(33, 32, 0, 0), error, lengthWords + "33)");
   expect(address(255, 32, 0, 0), error, lengthWords + "255)");
   // Out of range comes before too short.
   expect(address(5, 4, 129, 0), error, oidWords + "129)");
   expect(address(5, 4, 255, 255), error, oidWords + "255)");
   expect(address(5, 4, 10, 5), fatal,
          "Error: Management Address TLV is too short (infoLen=17, manAddrStringLen=5, "
          "oidStringLen=10)");
}

TEST_F(CodecOptionalTlvs, ManagementAddressesStandByKey) {
   CodecPort port;
   auto neighbour =
       port.receive(mandatory() + managementAddress(1, "\x0A\x01\x02\x03", 7) +
                    managementAddress(1, "\x0A\x01\x02\x03", 0xFFFFFFFF, "\x2B\x06\x01") +
                    managementAddress(6, "abcdef", 9, "\x86") + managementAddress(1, "abcdef", 9));
   ASSERT_TRUE(neighbour);
   EXPECT_EQ(neighbour->managementAddresss(), 3u);
   auto first = neighbour->managementAddress({1, Lldp::ManAddress("\x0A\x01\x02\x03", 4)});
   EXPECT_EQ(first.ifSubtype, 2);
   EXPECT_EQ(first.ifNumber, 0xFFFFFFFFu);
   EXPECT_EQ(first.oid.text, "1.3.6.1");
   // An object identifier that is none leaves the address good.
   EXPECT_TRUE(neighbour->managementAddress({6, Lldp::ManAddress("abcdef", 6)}).oid.empty());
   EXPECT_EQ(port.portStatus->rxFramesErrors(), 0u);
}

TEST_F(CodecOptionalTlvs, ReservedTypesAreKeptOneEach) {
   for (unsigned type : {9u, 100u, 126u}) expect(tlv(type, "anything"), unrecognized);
   CodecPort port;
   auto neighbour =
       port.receive(mandatory() + tlv(9, "a") + tlv(9, std::string(511, 'b')) + tlv(126, ""));
   EXPECT_EQ(neighbour->unknownTlvs(), 2u);
   EXPECT_EQ(neighbour->unknownTlv(9).value.bytes(), 511u);
   EXPECT_EQ(port.portStatus->rxTLVsUnrecognizedTotal(), 3u);
}

TEST_F(CodecOptionalTlvs, OrganisationsAreToldApart) {
   struct {
      uint32_t oui;
      const char* words;
   } rows[] = {{0x0080C2, "802.1 TLV"},
               {0x001B21, "Cee TLV"},
               {0x00120F, "802.3 TLV"},
               {0x0012BB, "TIA TLV"},
               {0xABCDEF, "Unknown OUI"}};
   for (const auto& row : rows) {
      // No organisation has these subtypes.
      expect(organization(row.oui, 255, "info"), unrecognized);
      EXPECT_THAT(context.traced(8), testing::Contains(row.words));
      expect(organization(row.oui, 0, "info"), error,
             "Error: Organizationally Specific TLV has invalid subtype of 0 (oui=" +
                 Lldp::Oui{row.oui}.stringValue().stdString() + ")");
   }
   for (unsigned n = 0; n < 4; ++n) {
      expect(
          tlv(127, std::string(n, 'x')), fatal,
          "Error: Organizationally Specific TLV is too short (infoLen=" + std::to_string(n) + ")");
   }
}

TEST_F(CodecOptionalTlvs, UnknownOrganisationTlvsAreNumberedInTheOrderOfTheFrame) {
   CodecPort port;
   std::string frame =
       mandatory() + organization(0xABCDEF, 1, "a") + organization(0xABCDEF, 2, "b") +
       organization(0xABCDEF, 1, std::string(507, 'c')) + organization(0xABCDE0, 1, "");
   auto neighbour = port.receive(frame);
   EXPECT_EQ(neighbour->unknownOrgDefTlvs(), 4u);
   EXPECT_EQ(neighbour->unknownOrgDefTlv({{0xABCDEF}, 1, 1}).orgDefInfo.value(), "a");
   EXPECT_EQ(neighbour->unknownOrgDefTlv({{0xABCDEF}, 2, 1}).orgDefInfo.value(), "b");
   EXPECT_EQ(neighbour->unknownOrgDefTlv({{0xABCDEF}, 1, 2}).orgDefInfo.bytes(), 507u);
   EXPECT_TRUE(neighbour->unknownOrgDefTlvHas({{0xABCDE0}, 1, 1}));
   // Numbering starts anew with each frame.
   double changed = neighbour->lastChangeTime();
   context.advance(1);
   port.receive(frame);
   EXPECT_EQ(neighbour->lastChangeTime(), changed);
}

}  // namespace
