// Every organisation TLV that is understood, with what a neighbour gets of it.
#pragma once

#include "support/FrameBuilder.h"

namespace LldpTest {

// What is said of a TLV that holds fewer than `below` octets behind its subtype. '#' stands for
// their number, '@' for that number less 1.
struct Cut {
   size_t below;
   std::string words;
};

struct OrganisationTlv {
   const char* label;
   uint32_t oui;
   unsigned subtype;
   std::string info;
   std::vector<Cut> cuts;  // none above the last: such a TLV is whole
   const char* stored;     // what differs from the defaults of a neighbour, as JSON
   bool open = false;      // the value reaches to the TLV's end

   std::string tlv() const { return organization(oui, subtype, info); }
};

inline Cut tooShort(size_t below, const std::string& name, const std::string& behind = "") {
   return {below, "Error: " + name + " TLV is too short (orgDefInfoLen=#" + behind + ")"};
}

inline std::vector<OrganisationTlv> organisationTlvs() {
   std::vector<OrganisationTlv> all;
   auto add = [&](const char* label, uint32_t oui, unsigned subtype, const std::string& info,
                  const std::vector<Cut>& cuts, const char* stored, bool open = false) {
      all.push_back({label, oui, subtype, info, cuts, stored, open});
   };
   add("Port VLAN ID", dot1, 1, be16(4094), {tooShort(2, "Port VLAN ID")},
       R"({"portVlanId": 4094, "portVlanIdTlvReceived": true})");
   add("Port And Protocol VLAN ID", dot1, 2, be8(0x06) + be16(200),
       {tooShort(3, "Port And Protocol VLAN ID")},
       R"({"portAndProtocolVlan": [{"ppvid": 200, "supported": true, "enabled": true}]})");
   add("VLAN Name", dot1, 3, be16(300) + be8(5) + "voice",
       {tooShort(4, "VLAN Name"), tooShort(8, "VLAN Name", ", vlanNameLen=5")},
       R"({"vlanName": [{"vlanId": 300, "vlanName": "voice"}]})");
   add("Protocol Identity", dot1, 4, octets("03888E01"),
       {tooShort(1, "Protocol Identity"), tooShort(4, "Protocol Identity", ", protoIdLen=3")},
       R"({"protocolIdentityInfo": [{"index": 1, "protocolIdentity": {"octets": "888e01"}}]})");
   add("VID Usage Digest", dot1, 5, be32(2712847316), {tooShort(4, "VID Usage Digest")},
       R"({"vidUsageDigest": 2712847316, "vidUsageDigestTlvReceived": true})");
   add("Management VID", dot1, 6, be16(400), {tooShort(2, "Management VID")},
       R"({"managementVid": 400, "managementVidTlvReceived": true})");
   add("Link Aggregation of IEEE 802.1", dot1, 7, be8(3) + be32(2147483655),
       {tooShort(5, "Link Aggregation")},
       R"({"linkAggregationInfo": {"status": 3, "portId": 2147483655},
           "linkAggregationTlvReceived": true})");
   add("MAC/PHY Configuration/Status", dot3, 1, be8(2) + be16(27649) + be16(30),
       {tooShort(5, "MAC/PHY Configuration/Status")},
       R"({"macPhyConfigStatusInfo": {"autoNegEnabled": true, "advertisedCapability": 27649,
                                      "operMauType": 30},
           "macPhyConfigStatusTlvReceived": true})");
   // A type 2 PD on a local source, with high priority.
   add("Power via MDI", dot3, 2, octets("08020562") + be16(255) + be16(130),
       {tooShort(3, "Power via MDI")},
       R"({"powerViaMdiInfo": {"tlvFormat": 1, "powerType": 1, "mdiPowerSupport": 8,
                               "psePowerPair": 2, "powerClass": 5, "powerSource": 2,
                               "powerPriority": 2, "pdRequestedPower": 255,
                               "pseAllocatedPower": 130},
           "powerViaMdiTlvReceived": true})");
   add("Link Aggregation of IEEE 802.3", dot3, 3, be8(1) + be32(88),
       {tooShort(5, "Link Aggregation")},
       R"({"linkAggregationInfo": {"status": 1, "portId": 88},
           "linkAggregationTlvReceived": true})");
   add("Maximum Frame Size", dot3, 4, be16(65534), {tooShort(2, "Maximum Frame Size")},
       R"({"maximumFrameSizeInfo": {"maxFrameSize": 65534},
           "maximumFrameSizeTlvReceived": true})");
   // Kept by the port, not by the neighbour.
   add("CEE Control", cee, 2, octets("0202010181020304"),
       {{8, "Error: Cee Control TLV is too short (length=#)"}}, "{}");
   add("LLDP-MED Capabilities", tia, 1, octets("FF3303"), {tooShort(3, "LLDP-MED Capabilities")},
       R"({"medCapabilitiesInfo": {"capabilities": 51, "mediaEndpointDeviceType": 3},
           "medCapabilitiesTlvReceived": true})");
   add("LLDP-MED Network Policy", tia, 2, be32(1 << 24 | 1 << 22 | 100 << 9 | 5 << 6 | 46),
       {tooShort(4, "LLDP-MED NetworkPolicy")},
       R"({"networkPolicyTlv": [{"appType": 1, "unknown": false, "tagged": true, "vlanId": 100,
                                 "l2Priority": 5, "dscp": 46}]})");
   // 33.5 degrees south, 151.25 east, 12.5 metres below the datum.
   add("Coordinate-based LCI", tia, 3, octets("018BBD000000852E80000017BFFFF38001"),
       {tooShort(1, "LLDP-MED Location ID"),
        {17,
         "Error: LLDP-MED Location ID Coordinate Based TLV size is invalid ( "
         "coordinateDataLen = @)"}},
       R"({"locationId": {"coordinateBasedLCI": {
           "latitudeResolution": 34, "latitude": -1124073472, "longitudeResolution": 33,
           "longitude": 5075107840, "altitudeType": 1, "altitudeResolution": 30,
           "altitude": -3200, "datum": 1, "valid": true}}})");
   add("Civic Address LCI", tia, 3, octets("021802") + "AU\x01\x08Victoria\x03\x09Melbourne",
       {tooShort(1, "LLDP-MED Location ID"),
        {5, "Error: LLDP-MED Civic Adreess LCI size is invalid (addressDataLen: @)"},
        {26,
         "Error: LLDP-MED Civic Adreess LCI length is invalid (lciLength: 24, "
         "addressDataLen: @)"}},
       R"({"locationId": {"civicAddressLCI": {
           "lciLength": 24, "what": 2, "countryCode": "AU",
           "caElements": [{"caType": 1, "caValue": "Victoria"},
                          {"caType": 3, "caValue": "Melbourne"}], "valid": true}}})");
   add("ECS ELIN", tia, 3,
       "\x03"
       "0296123456",
       {tooShort(1, "LLDP-MED Location ID")},
       R"({"locationId": {"ecsElin": {"elin": "0296123456", "valid": true}}})", true);
   add("Hardware Revision", tia, 5, "hw", {},
       R"({"hardwareRevisionTlvInfo": {"tlvReceived": true, "tlvInfo": "hw"}})", true);
   add("Firmware Revision", tia, 6, "fw", {},
       R"({"firmwareRevisionTlvInfo": {"tlvReceived": true, "tlvInfo": "fw"}})", true);
   add("Software Revision", tia, 7, "software, as long as it may be..", {},
       R"({"softwareRevisionTlvInfo": {"tlvReceived": true,
                                       "tlvInfo": "software, as long as it may be.."}})",
       true);
   add("Serial Number", tia, 8, "\x80", {},
       R"({"serialNumberTlvInfo": {"tlvReceived": true, "tlvInfo": {"octets": "80"}}})", true);
   add("Manufacturer Name", tia, 9, "maker", {},
       R"({"manufacturerNameTlvInfo": {"tlvReceived": true, "tlvInfo": "maker"}})", true);
   add("Model Name", tia, 10, "model", {},
       R"({"modelNameTlvInfo": {"tlvReceived": true, "tlvInfo": "model"}})", true);
   // An empty text is a text.
   add("Asset ID", tia, 11, "", {}, R"({"assetIDTlvInfo": {"tlvReceived": true}})", true);
   return all;
}

// Neighbour number `n` with every TLV of every organisation.
inline std::string everyTlvLldpdu(uint32_t n = 1) {
   std::string all = typicalLldpdu(n);
   all.resize(all.size() - 2);
   for (const auto& one : organisationTlvs()) all += one.tlv();
   return all + endOfLldpdu();
}

}  // namespace LldpTest
