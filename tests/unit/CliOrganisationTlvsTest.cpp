// The operator's command: what the TLVs of organisations say, for scripts and in words.
#include <gmock/gmock.h>

#include <functional>
#include <set>

#include "Rex/EntityType.h"
#include "cli/Neighbor.h"
#include "model/RemoteSystem.h"

namespace {

using Lldp::BoundedString255;
using Lldp::BoundedString32;
using Lldp::BoundedString32Tlv;
using Lldp::RemoteSystem;
using LldpCli::Json;

struct Case {
   std::function<void(RemoteSystem&)> say;
   const char* json;                // what joins a neighbour that says nothing else
   std::vector<const char*> lines;  // likewise
};

Rex::Ptr<RemoteSystem> someone() {
   return Rex::make<RemoteSystem>(1, RemoteSystem::Msap());
}

Json viewOf(const RemoteSystem& remoteSystem) {
   return LldpCli::neighbor("Ethernet1", Rex::entityToJson(remoteSystem), 1000);
}

std::vector<std::string> linesOf(const Json& view) {
   std::vector<std::string> lines;
   for (const auto& [label, value] : LldpCli::neighborFields(view)) {
      lines.push_back(label + ": " + value);
   }
   return lines;
}

void expectShown(const std::vector<Case>& cases) {
   const Json bare = viewOf(*someone());
   const auto bareLines = linesOf(bare);
   for (const Case& c : cases) {
      auto remoteSystem = someone();
      c.say(*remoteSystem);
      Json view = viewOf(*remoteSystem);
      auto lines = linesOf(view);
      std::erase_if(lines, [&](const std::string& line) {
         return std::ranges::find(bareLines, line) != bareLines.end();
      });
      EXPECT_THAT(lines, testing::ElementsAreArray(c.lines));
      for (const auto& [name, value] : bare.items()) {
         if (view.at(name) == value) view.erase(name);
      }
      EXPECT_EQ(view, Json::parse(c.json));
   }
}

TEST(CliOrganisationTlvs, Ieee8021) {
   expectShown({
       {[](RemoteSystem& r) { r.managementVidTlvReceivedIs(true); },
        R"({"managementVid": 0})",
        {"Management VID: none"}},
       {[](RemoteSystem& r) {
           r.portAndProtocolVlanIs({10, true, false});
           r.portAndProtocolVlanIs({2, true, true});
        },
        R"({"protocolVlans": [{"vlanId": 2, "supported": true, "enabled": true},
                              {"vlanId": 10, "supported": true, "enabled": false}]})",
        {"Protocol VLAN: 2: supported, enabled", "Protocol VLAN: 10: supported, not enabled"}},
       {[](RemoteSystem& r) {
           r.vlanNameIs({20, BoundedString32("voice")});
           r.vlanNameIs({3, BoundedString32("\x1b[2J\xff")});
        },
        R"({"vlanNames": [{"vlanId": 3, "name": "\\x1b[2J\\xff"}, {"vlanId": 20, "name": "voice"}]})",
        {"VLAN name: 3: \\x1b[2J\\xff", "VLAN name: 20: voice"}},
   });
}

TEST(CliOrganisationTlvs, Ieee8023) {
   auto power = [](const Lldp::PowerViaMdiInfo& info) {
      return [info](RemoteSystem& r) {
         r.powerViaMdiInfoIs(info);
         r.powerViaMdiTlvReceivedIs(true);
      };
   };
   auto macPhy = [](const Lldp::MacPhyConfigStatusInfo& info) {
      return [info](RemoteSystem& r) {
         r.macPhyConfigStatusInfoIs(info);
         r.macPhyConfigStatusTlvReceivedIs(true);
      };
   };
   expectShown({
       {macPhy({true, false, 0x8401, 30}),
        R"({"macPhy": {"autoNegotiation": {"supported": true, "enabled": false, "advertised":
               ["1000BASE-T full duplex", "100BASE-TX full duplex", "other"]},
            "mauType": 30, "mauTypeName": "1000BASE-T full duplex"}})",
        {"MAC/PHY auto-negotiation: supported, not enabled",
         "MAC/PHY advertised: 1000BASE-T full duplex, 100BASE-TX full duplex, other",
         "MAC/PHY type: 1000BASE-T full duplex"}},
       {macPhy({false, false, 0, 300}),
        R"({"macPhy": {"autoNegotiation": {"supported": false, "enabled": false, "advertised": []},
            "mauType": 300, "mauTypeName": "reserved 300"}})",
        {"MAC/PHY auto-negotiation: not supported, not enabled", "MAC/PHY advertised: none",
         "MAC/PHY type: reserved 300"}},
       {power({0, 0, 0x0F, 1, 5}),
        R"({"powerViaMdi": {"portClass": "PSE", "supported": true, "enabled": true,
            "pairControl": true, "pair": "signal", "class": "class 4"}})",
        {"Power via MDI: PSE, supported, enabled, signal pair (can be changed), class 4"}},
       {power({1, 1, 0x00, 2, 0, 3, 2, 129, 65535}),
        R"({"powerViaMdi": {"portClass": "PD", "supported": false, "enabled": false,
            "pairControl": false, "pair": "spare", "class": "reserved 0", "type": "type 2 PD",
            "source": "PSE and local", "priority": "high", "requestedWatts": 12.9,
            "allocatedWatts": 6553.5}})",
        {"Power via MDI: PD, not supported, not enabled, spare pair, reserved 0",
         "Power via MDI type: type 2 PD, source PSE and local, priority high",
         "Power via MDI power: 12.9 W requested, 6553.5 W allocated"}},
       {[](RemoteSystem& r) {
           r.linkAggregationInfoIs({0x01, 4294967295});
           r.linkAggregationTlvReceivedIs(true);
        },
        R"({"linkAggregation": {"capable": true, "enabled": false, "portId": 4294967295}})",
        {"Link aggregation: capable, not enabled, port 4294967295"}},
   });
}

TEST(CliOrganisationTlvs, LldpMed) {
   expectShown({
       {[](RemoteSystem& r) {
           r.medCapabilitiesInfoIs({0x23, 3});
           r.medCapabilitiesTlvReceivedIs(true);
        },
        R"({"medCapabilities": {"capabilities":
               ["LLDP-MED Capabilities", "Network Policy", "Inventory"],
            "deviceClass": "endpoint class III"}})",
        {"LLDP-MED capabilities: LLDP-MED Capabilities, Network Policy, Inventory",
         "LLDP-MED device class: endpoint class III"}},
       {[](RemoteSystem& r) {
           r.networkPolicyTlvIs({9, true, false, 0, 0, 0});
           r.networkPolicyTlvIs({1, false, true, 4095, 5, 46});
        },
        R"({"networkPolicies": [
            {"applicationNumber": 1, "application": "voice", "unknown": false, "tagged": true,
             "vlanId": 4095, "priority": 5, "dscp": 46},
            {"applicationNumber": 9, "application": "reserved 9", "unknown": true, "tagged": false,
             "vlanId": 0, "priority": 0, "dscp": 0}]})",
        {"Network policy: voice: tagged, VLAN 4095, priority 5, DSCP 46",
         "Network policy: reserved 9: policy unknown, untagged, VLAN 0, priority 0, DSCP 0"}},
       {[](RemoteSystem& r) {
           r.serialNumberTlvInfoIs(BoundedString32Tlv::create(BoundedString32("")));
           r.assetIDTlvInfoIs(BoundedString32Tlv::create(BoundedString32("\a12")));
        },
        R"({"serialNumber": "", "assetId": "\\x0712"})",
        {"Serial number: ", "Asset ID: \\x0712"}},
   });
}

TEST(CliOrganisationTlvs, Locations) {
   expectShown({
       {[](RemoteSystem& r) {
           Lldp::LocationId location;
           // 48.5 degrees, good to one bit behind the point, and the least below 0; 3.25 floors
           // down.
           location.coordinateBasedLCI = {10, 97LL << 24, 34, -1, 2, 30, -(13 << 6), 1, true};
           r.locationIdIs(location);
        },
        R"({"location": {"coordinates": {"latitude": {"value": 48.5, "uncertainty": 0.5},
            "longitude": {"value": -2.98023223876953125e-08,
                          "uncertainty": 2.98023223876953125e-08},
            "altitude": {"value": -3.25, "uncertainty": 0.00390625, "unit": "floors"},
            "datum": "WGS 84"}}})",
        {"Location latitude: 48.50000000 +/- 0.50000000 degrees",
         "Location longitude: -0.00000003 +/- 0.00000003 degrees",
         "Location altitude: -3.250 +/- 0.004, unit floors", "Location datum: WGS 84"}},
       {[](RemoteSystem& r) {
           Lldp::LocationId location;
           location.coordinateBasedLCI = {0, -1LL << 33, 35, 0, 7, 31, 0, 9, true};
           r.locationIdIs(location);
        },
        R"({"location": {"coordinates": {"latitude": {"value": -256.0}, "longitude": {"value": 0.0},
            "altitude": {"value": 0.0, "unit": "reserved 7"}, "datum": "reserved 9"}}})",
        {"Location latitude: -256.00000000 (uncertainty unknown) degrees",
         "Location longitude: 0.00000000 (uncertainty unknown) degrees",
         "Location altitude: 0.000 (uncertainty unknown), unit reserved 7",
         "Location datum: reserved 9"}},
       {[](RemoteSystem& r) {
           Lldp::LocationId location;
           location.civicAddressLCI = {
               20, 2, "D\n", {{19, BoundedString255("1")}, {99, BoundedString255("\xff")}}, true};
           location.ecsElin.elin = decltype(location.ecsElin.elin)("+1\t");
           location.ecsElin.valid = true;
           r.locationIdIs(location);
        },
        R"({"location": {"civicAddress": {"of": "client", "country": "D\\x0a", "elements": [
               {"type": 19, "name": "house number", "value": "1"},
               {"type": 99, "name": "reserved 99", "value": "\\xff"}]},
            "elin": "+1\\x09"}})",
        {"Location address: of the client", "Location address: country: D\\x0a",
         "Location address: house number: 1", "Location address: reserved 99: \\xff",
         "Location ELIN: +1\\x09"}},
   });
}

// Whatever the agent keeps of a neighbour is shown.
TEST(CliOrganisationTlvs, NothingIsLeftOut) {
   const std::set<std::string> otherwise{"index",           "msap",       "creationTime",
                                         "lastRefreshTime", "expiryTime", "lastChangeTime"};
   for (const auto& member : RemoteSystem::staticType().members()) {
      EXPECT_NE(LldpCli::neighborItem(member->name) != nullptr, otherwise.contains(member->name))
          << member->name;
   }
}

}  // namespace
