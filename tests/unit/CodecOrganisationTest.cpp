// The organisations' TLVs of a received frame.
#include <functional>

#include "support/OrganisationTlvs.h"
#include "support/TlvFixture.h"

using namespace LldpTest;
using nlohmann::json;

namespace {

std::string filled(std::string words, size_t octets) {
   auto replace = [&](char mark, size_t number) {
      if (size_t at = words.find(mark); at != std::string::npos) {
         words.replace(at, 1, std::to_string(number));
      }
   };
   replace('#', octets);
   replace('@', octets - 1);
   return words;
}

class CodecOrganisation : public TlvFixture {
 protected:
   // What the latest frame drew of warnings.
   std::vector<std::string> warnings() const {
      auto all = context.traced(6);
      std::erase_if(all, [](const auto& text) { return !text.starts_with("Warning"); });
      return all;
   }
};

TEST_F(CodecOrganisation, EachTlvFillsItsAttributes) {
   for (const auto& row : organisationTlvs()) {
      SCOPED_TRACE(row.label);
      json stored = json::parse(row.stored);
      EXPECT_EQ(expect(row.tlv(), ok), stored);
      EXPECT_EQ(warnings().size(), 0u);
      // What stands behind the fields is not looked at.
      if (row.open) continue;
      EXPECT_EQ(expect(organization(row.oui, row.subtype, row.info + "tail"), ok), stored);
   }
}

TEST_F(CodecOrganisation, EveryPrefixOfATlvGivesExactlyItsError) {
   for (const auto& row : organisationTlvs()) {
      for (size_t n = 0; n < row.info.size(); ++n) {
         SCOPED_TRACE(row.label + std::string(", octets: ") + std::to_string(n));
         std::string words;
         for (auto cut = row.cuts.rbegin(); cut != row.cuts.rend(); ++cut) {
            if (n < cut->below) words = filled(cut->words, n);
         }
         expect(organization(row.oui, row.subtype, row.info.substr(0, n)),
                words.empty() ? ok : fatal, words);
      }
   }
}

// A frame that is cut off holds what stood whole in front of the cut.
TEST_F(CodecOrganisation, EveryPrefixOfAFrameKeepsTheTlvsInFrontOfTheCut) {
   std::string frame = mandatory();
   for (const auto& row : organisationTlvs()) {
      CodecPort whole;
      json before = storedOf(*whole.receive(frame));
      std::string octets = row.tlv();
      for (size_t n = 1; n < octets.size(); ++n) {
         SCOPED_TRACE(row.label + std::string(", octets: ") + std::to_string(n));
         CodecPort port;
         auto neighbour = port.receive(frame + octets.substr(0, n));
         ASSERT_TRUE(neighbour);
         EXPECT_EQ(storedOf(*neighbour), before);
         EXPECT_EQ(port.portStatus->rxTLVsDiscardedTotal(), 1u);
         EXPECT_EQ(port.portStatus->rxFramesErrors(), 1u);
      }
      frame += octets;
   }
}

TEST_F(CodecOrganisation, FieldsHaveTheirRanges) {
   auto vlanName = [](unsigned vlan, unsigned length) {
      return organization(dot1, 3, be16(vlan) + be8(length) + std::string(40, 'n'));
   };
   const std::string protocolVlan = "Error: Port And Protocol VLAN ID is ";
   const std::string nameLength = "Error: VLAN Name length is out-of-range (vlanNameLen=";
   const std::string nameVlan = "Error: VLAN Name VLAN ID is out-of-range (vlanId=";
   struct {
      std::string octets;
      Result result;
      std::string words;
   } rows[] = {
       {organization(dot1, 1, be16(4095)), error,
        "Error: Port VLAN ID is out-of-range (pvid=4095)"},
       {organization(dot1, 1, be16(0)), ok, ""},
       {organization(dot1, 2, be8(0x04) + be16(5)), error,
        protocolVlan + "enabled but not supported (ppvid=5, flags=0x4)"},
       {organization(dot1, 2, be8(0xFD) + be16(0xFFFF)), error,
        protocolVlan + "enabled but not supported (ppvid=65535, flags=0xfd)"},
       {organization(dot1, 2, be8(0x06) + be16(4095)), error,
        protocolVlan + "out-of-range (ppvid=4095)"},
       {organization(dot1, 2, be8(0x02) + be16(0)), ok, ""},
       {vlanName(1, 32), ok, ""},
       {vlanName(4094, 1), ok, ""},
       // The length comes first.
       {vlanName(0, 33), error, nameLength + "33)"},
       {vlanName(0, 0), error, nameLength + "0)"},
       {vlanName(0, 5), error, nameVlan + "0)"},
       {vlanName(4095, 5), error, nameVlan + "4095)"},
       {organization(dot1, 4, be8(0) + "id"), error,
        "Error: Protocol Identity length is out-of-range (protoIdLen=0)"},
       {organization(dot1, 6, be16(0)), ok, ""},
       {organization(dot1, 6, be16(4095)), error,
        "Error: Management VID is out-of-range (mvid=4095)"},
       {organization(tia, 11, std::string(33, 'a')), fatal,
        "Error: LLDP-MED Asset ID TLV is too big (orgDefInfoLen=33)"},
       {organization(tia, 3, be8(2) + be8(2) + std::string(9, '\2')), fatal,
        "Error: LLDP-MED Civic Adreess LCI length is invalid (lciLength: 2, addressDataLen: 10)"},
       {organization(dot1, 8, "?"), unrecognized, ""},
       {organization(dot3, 5, "?"), unrecognized, ""},
       {organization(cee, 1, std::string(12, '?')), unrecognized, ""},
       {organization(tia, 4, "?"), unrecognized, ""},
       {organization(tia, 3, be8(0)), unrecognized, ""},
       {organization(tia, 3, be8(4) + "?"), unrecognized, ""},
   };
   for (const auto& row : rows) {
      SCOPED_TRACE(row.words + ", octets: " + std::to_string(row.octets.size()));
      json stored = expect(row.octets, row.result, row.words);
      if (row.result == error) {
         EXPECT_EQ(stored, json::object());
      }
      if (row.result == unrecognized) {
         EXPECT_EQ(stored["unknownOrgDefTlv"].size(), 1u);
      }
   }
}

// Each length inside a TLV against each length of the TLV.
TEST_F(CodecOrganisation, InnerAndOuterLengths) {
   struct {
      const char* label;
      unsigned type;
      std::string fields;  // in front of the inner length; behind it stand zeros
      unsigned most;       // the longest information string that is tried
      std::function<Result(unsigned inner, unsigned outer)> result;
   } rows[] = {
       {"VLAN Name", 127, be32(dot1 << 8 | 3) + be16(300), 50,
        [](unsigned inner, unsigned outer) {
           if (outer < 8) return fatal;
           if (inner == 0 || inner > 32) return error;
           return outer < 7 + inner ? fatal : ok;
        }},
       {"Protocol Identity", 127, be32(dot1 << 8 | 4), 50,
        [](unsigned inner, unsigned outer) {
           if (outer < 5) return fatal;
           if (inner == 0) return error;
           return outer < 5 + inner ? fatal : ok;
        }},
       {"management address", 8, "", 50,
        [](unsigned inner, unsigned outer) {
           if (outer < 9) return fatal;
           if (inner < 2 || inner > 32) return error;
           return outer < inner + 7 ? fatal : ok;
        }},
       {"object identifier", 8, be8(5) + be8(1) + "addr" + be8(2) + be32(7), 150,
        [](unsigned inner, unsigned outer) {
           if (outer < 12) return fatal;
           if (inner > 128) return error;
           return outer < 12 + inner ? fatal : ok;
        }},
       {"civic address", 127, be32(tia << 8 | 3) + be8(2), 50,
        [](unsigned inner, unsigned outer) {
           return outer < 9 || inner < 3 || outer < 6 + inner ? fatal : ok;
        }},
       // An element that does not fit its address is left out and harms nothing.
       {"civic address element", 127,
        be32(tia << 8 | 3) + be8(2) + be8(15) + be8(2) + "AU" + be8(1), 50,
        [](unsigned, unsigned outer) { return outer < 21 ? fatal : ok; }},
   };
   for (const auto& row : rows) {
      for (unsigned inner : {0, 1, 2, 3, 4, 5, 10, 11, 12, 31, 32, 33, 127, 128, 129, 254, 255}) {
         std::string whole = row.fields + be8(inner) + std::string(row.most, '\0');
         for (unsigned outer = 4; outer <= row.most; ++outer) {
            SCOPED_TRACE(row.label + (": " + std::to_string(inner)) + "/" + std::to_string(outer));
            CodecPort port;
            bool kept(port.receive(mandatory() + tlv(row.type, whole.substr(0, outer))));
            Result result = !kept ? fatal : port.portStatus->rxTLVsDiscardedTotal() ? error : ok;
            EXPECT_EQ(result, row.result(inner, outer));
         }
      }
   }
}

TEST_F(CodecOrganisation, LocationsAreKeptAsFarAsTheyCanBeRead) {
   auto elin = [](const std::string& number) { return organization(tia, 3, be8(3) + number); };
   auto civic = [](unsigned length, const std::string& elements, unsigned what = 2) {
      return organization(tia, 3, be8(2) + be8(length) + be8(what) + "AU" + elements);
   };
   const std::string size = "Warning: LLDP-MED ECS ELIN size is invalid: ";
   const std::string digits = "Warning: LLDP-MED ECS ELIN Number has non digit chars";
   const std::string left =
       "Warning: LLDP-MED Civic Adreess LCI not completely processed.Remaining size: ";
   const std::string what = "Warning: LLDP-MED Civic Adreess LCI What field value is unexpected: ";
   const std::string one = be8(6) + be8(2) + "St";
   const std::string street = R"([{"caType": 6, "caValue": "St"}])";
   const std::string sevens = "7777777777777777777777777";
   struct {
      std::string octets;
      std::vector<std::string> words;
      const char* at;  // where in the location the value stands
      std::string value;
   } rows[] = {
       {elin(""), {size + "0"}, "/ecsElin", R"({"valid": true})"},
       {elin("123456789"), {size + "9"}, "/ecsElin/elin", R"("123456789")"},
       {elin(sevens), {}, "/ecsElin/elin", '"' + sevens + '"'},
       // What is cut off is not looked at.
       {elin(sevens + "x"), {size + "26"}, "/ecsElin/elin", '"' + sevens + '"'},
       {elin("12A456789012"), {digits}, "/ecsElin/elin", R"("12A456789012")"},
       {civic(3, ""), {}, "/civicAddressLCI/lciLength", "3"},
       {civic(7, one + "junk", 1), {what + "1"}, "/civicAddressLCI/caElements", street},
       {civic(8, one + "x"), {left + "1"}, "/civicAddressLCI/caElements", street},
       {civic(13, one + be8(7) + be8(10) + "1234"),
        {left + "6"},
        "/civicAddressLCI/caElements",
        street},
       // An element of no octets is one; of the first element the header is not left over.
       {civic(5, be8(7) + be8(0)),
        {},
        "/civicAddressLCI/caElements",
        R"([{"caType": 7, "caValue": ""}])"},
       {civic(7, be8(7) + be8(3) + "12"), {left + "2"}, "/civicAddressLCI/lciLength", "7"},
       {civic(255, std::string(252, '\0')),
        {},
        "/civicAddressLCI/caElements/125",
        R"({"caType": 0, "caValue": ""})"},
       {organization(tia, 3, be8(1) + std::string(16, '\xFF')),
        {},
        "/coordinateBasedLCI",
        R"({"latitudeResolution": 63, "latitude": -1, "longitudeResolution": 63, "longitude": -1,
            "altitudeType": 15, "altitudeResolution": 63, "altitude": -1, "datum": 255,
            "valid": true})"},
       // The least numbers.
       {organization(tia, 3, be8(1) + be8(2) + be32(0) + be8(2) + be32(0) + be16(0x0020) + be32(0)),
        {},
        "/coordinateBasedLCI",
        R"({"latitude": -8589934592, "longitude": -8589934592, "altitude": -536870912,
            "valid": true})"},
   };
   for (const auto& row : rows) {
      SCOPED_TRACE(row.value);
      json location = expect(row.octets, ok)["locationId"];
      EXPECT_EQ(location.value(json::json_pointer(row.at), json()), json::parse(row.value));
      EXPECT_EQ(warnings(), row.words);
   }
   // The formats stand side by side, and the last one of each counts.
   json location = expect(elin("1234567890") + civic(3, "") + elin("0987654321") +
                              organization(tia, 3, be8(1) + std::string(16, '\1')),
                          ok)["locationId"];
   EXPECT_EQ(location["ecsElin"]["elin"], "0987654321");
   EXPECT_EQ(location["civicAddressLCI"]["valid"], true);
   EXPECT_EQ(location["coordinateBasedLCI"]["valid"], true);
}

TEST_F(CodecOrganisation, ValuesAreKeptAsTheyAreOfferedOrMasked) {
   struct {
      std::string octets;
      const char* stored;
   } rows[] = {
       {organization(tia, 1, be16(0xFFFF) + be8(9)),
        R"({"medCapabilitiesInfo": {"capabilities": 63, "mediaEndpointDeviceType": 5},
            "medCapabilitiesTlvReceived": true})"},
       {organization(tia, 2, be32(0xFFFFFFFF)),
        R"({"networkPolicyTlv": [{"appType": 255, "unknown": true, "tagged": true, "vlanId": 4095,
                                  "l2Priority": 7, "dscp": 63}]})"},
       {organization(tia, 2, be32(0)),
        R"({"networkPolicyTlv": [{"appType": 0, "unknown": false, "tagged": false, "vlanId": 0,
                                  "l2Priority": 0, "dscp": 0}]})"},
       // Of one application the second.
       {organization(tia, 2, be32(0x01400A01)) + organization(tia, 2, be32(0x01800002)),
        R"({"networkPolicyTlv": [{"appType": 1, "unknown": true, "tagged": false, "vlanId": 0,
                                  "l2Priority": 0, "dscp": 2}]})"},
       {organization(dot3, 2, be8(7) + be8(1) + be8(5) + be8(0xFF) + be16(255) + be8(0)),
        R"({"powerViaMdiInfo": {"mdiPowerSupport": 7, "psePowerPair": 1, "powerClass": 5},
            "powerViaMdiTlvReceived": true})"},
       {organization(dot1, 7, be8(1) + be32(7)) + organization(dot3, 3, be8(2) + be32(9)),
        R"({"linkAggregationInfo": {"status": 2, "portId": 9}, "linkAggregationTlvReceived": true})"},
       {organization(dot3, 3, be8(2) + be32(9)) + organization(dot1, 7, be8(1) + be32(7)),
        R"({"linkAggregationInfo": {"status": 1, "portId": 7}, "linkAggregationTlvReceived": true})"},
       {organization(dot1, 4, be8(1) + "b") + organization(dot1, 4, be8(1) + "a"),
        R"({"protocolIdentityInfo": [{"index": 1, "protocolIdentity": "b"},
                                     {"index": 2, "protocolIdentity": "a"}]})"},
   };
   for (const auto& row : rows) EXPECT_EQ(expect(row.octets, ok), json::parse(row.stored));
}

TEST_F(CodecOrganisation, TheSameFrameAgainChangesNothing) {
   CodecPort port;
   auto neighbour = port.receive(everyTlvLldpdu());
   double changed = neighbour->lastChangeTime();
   json stored = storedOf(*neighbour);
   context.advance(1);
   port.receive(everyTlvLldpdu());
   EXPECT_EQ(neighbour->lastChangeTime(), changed);
   EXPECT_EQ(storedOf(*neighbour), stored);
   // A TLV that is no longer sent is gone.
   port.receive(mandatory());
   EXPECT_EQ(storedOf(*neighbour), json::object());
   EXPECT_EQ(port.portStatus->rxFramesErrors(), 0u);
}

// The sequence number is the port's: it is no change of the neighbour, and it outlives a frame that
// is dropped.
TEST_F(CodecOrganisation, CeeSequenceNumberIsKeptAtOnce) {
   auto control = [](uint32_t number) { return organization(cee, 2, be32(0) + be32(number)); };
   CodecPort port;
   auto neighbour = port.receive(mandatory() + control(0xFEDCBA98));
   EXPECT_EQ(port.portStatus->ceeSeqNumToAck(), 0xFEDCBA98u);
   double changed = neighbour->lastChangeTime();
   context.advance(1);
   port.receive(mandatory() + control(2));
   EXPECT_EQ(neighbour->lastChangeTime(), changed);
   EXPECT_FALSE(port.receive(mandatory() + control(3) + organization(dot1, 1, "")));
   EXPECT_EQ(port.portStatus->ceeSeqNumToAck(), 3u);
   // One that is cut in its number leaves what stood there.
   EXPECT_FALSE(port.receive(mandatory() + organization(cee, 2, "1234567")));
   EXPECT_EQ(port.portStatus->ceeSeqNumToAck(), 3u);
}

}  // namespace
