// The operator's command against a management API that serves the system's own entities.
#include <gmock/gmock.h>

#include <fstream>
#include <sstream>

#include "Interface/EthPhyIntfStatus.h"
#include "Interface/IntfStatus.h"
#include "Rex/Dir.h"
#include "cli/Client.h"
#include "cli/Failure.h"
#include "model/CliConfig.h"
#include "model/Config.h"
#include "model/LocalSystem.h"
#include "model/Status.h"
#include "unit/CliFakeAgent.h"
#include "unit/CliRun.h"

namespace {

using LldpCli::Json;
using testing::HasSubstr;
using testing::Not;

constexpr double now = 1000;
const Wirekit::IntfId ethernet1("Ethernet1");
const Wirekit::IntfId ethernet2("Ethernet2");
const Wirekit::IntfId ethernet10("Ethernet10/1");

Lldp::RemoteSystem::Msap msap(const char* chassis, const char* port) {
   return {{Lldp::ChassisIdSubtype::local, Lldp::ChassisId(chassis)},
           {Lldp::PortIdSubtype::interfaceName, Lldp::PortId(port)}};
}

class CliShow : public testing::Test {
 protected:
   CliShow() {
      for (const auto& port : {ethernet10, ethernet2, ethernet1}) {
         status->portStatusIs(port, now - 500);
         config->portConfigIs(port)->adminStatusIs(Lldp::AdminStatus::txAndRx);
         config->portConfig(port)->mgmtAddrTxEnableIs(true);
         local->localPortIs(port)->portIdentifierIs(
             {Lldp::PortIdSubtype::interfaceName, Lldp::PortId(port.stringValue())});
      }
   }

   Rex::Ptr<Lldp::RemoteSystem> bare(const Wirekit::IntfId& port, int index, const char* name) {
      auto made = status->portStatus(port)->remoteSystemIs(index, msap(name, "p1"));
      made->ttlIs(120);
      made->creationTimeIs(now - 100);
      made->lastChangeTimeIs(now - 90);
      made->lastRefreshTimeIs(now - 22.5);
      made->expiryTimeIs(now + 97.5);
      made->ethAddrIs(Wirekit::EthAddr(2, 0, 0, 0, 0, 9));
      return made;
   }

   Rex::Ptr<Lldp::RemoteSystem> talkative(const Wirekit::IntfId& port, int index) {
      using Text = Lldp::BoundedString255;
      auto made = bare(port, index, "rack");
      made->portDescIs(Lldp::BoundedString255Tlv::create(Text("uplink")));
      made->sysNameIs(Lldp::BoundedString255Tlv::create(Text("spine-1")));
      made->sysDescIs(Lldp::BoundedString255Tlv::create(Text("")));
      made->systemCapabilitiesIs(Lldp::SystemCapabilitiesTlv::create(0x14, 0x04));
      Lldp::ManagementAddress address;
      address.key = {1, Lldp::ManAddress("\xc0\x00\x02\x01", 4)};
      address.ifSubtype = 2;
      address.ifNumber = 7;
      address.oid.text = "1.3.6";
      made->managementAddressIs(address);
      made->unknownTlvIs({10, Lldp::BoundedString511("\x0a\xff", 2)});
      made->unknownOrgDefTlvIs({{{0x0080C2}, 9, 2}, Lldp::BoundedString507("\x00\x05", 2)});
      made->unknownOrgDefTlvIs({{{0x0080C2}, 9, 1}, Lldp::BoundedString507("ab", 2)});
      return made;
   }

   // Runs the command against the entities as they stood at the first one.
   CliDone ask(std::vector<std::string> words, LldpCli::Terminal terminal = {}) {
      if (!serving) {
         agent.serve("l2discovery/lldp/status/local/1", *status);
         agent.serve("l2discovery/lldp/config", *config);
         agent.serve("l2discovery/lldp/localSystem", *local);
         agent.serve("l2discovery/lldp/externalTlvs", *externalTlvs);
         agent.serve("interface/status/eth/phy/all", *phys);
         agent.serve("interface/status/all", *intfs);
         agent.start();
         serving = true;
      }
      words.insert(words.begin(), {"--socket", agent.socketPath(), "show"});
      return cliRun(words, terminal);
   }
   std::string show(const std::vector<std::string>& words, LldpCli::Terminal terminal = {}) {
      CliDone done = ask(words, terminal);
      EXPECT_EQ(done.status, 0);
      EXPECT_EQ(done.err, "");
      return done.out;
   }
   Json showJson(std::vector<std::string> words) {
      words.push_back("--json");
      return Json::parse(show(words));
   }

   bool serving = false;
   CliFakeAgent agent{now};
   Rex::Ptr<Lldp::Status> status = Rex::make<Lldp::Status>();
   Rex::Ptr<Lldp::Config> config = Rex::make<Lldp::Config>();
   Rex::Ptr<Lldp::LocalSystem> local = Rex::make<Lldp::LocalSystem>();
   Rex::Ptr<Rex::Dir> externalTlvs = Rex::make<Rex::Dir>();
   Rex::Ptr<Interface::AllEthPhyIntfStatusDir> phys =
       Rex::make<Interface::AllEthPhyIntfStatusDir>();
   Rex::Ptr<Interface::AllIntfStatusDir> intfs = Rex::make<Interface::AllIntfStatusDir>();
};

TEST_F(CliShow, NeighborsAsJson) {
   talkative(ethernet1, 3);
   EXPECT_EQ(showJson({"neighbors"}), Json::parse(R"({"neighbors": [{
      "port": "Ethernet1", "index": 3,
      "chassis": {"subtype": "local", "id": "rack"},
      "portId": {"subtype": "interfaceName", "id": "p1"},
      "portDescription": "uplink", "systemName": "spine-1", "systemDescription": "",
      "capabilities": {"supported": ["Bridge", "Router"], "enabled": ["Bridge"]},
      "managementAddresses": [{"family": "ipv4", "familyNumber": 1, "address": "192.0.2.1",
         "interfaceNumbering": "ifIndex", "interfaceNumber": 7, "oid": "1.3.6"}],
      "protocolVlans": [], "vlanNames": [], "protocolIdentities": [], "networkPolicies": [],
      "unknownTlvs": [{"type": 10, "value": "0aff"}],
      "unknownOrganizationTlvs": [
         {"oui": "00-80-c2", "subtype": 9, "index": 1, "value": "6162", "name": "ETS Configuration"},
         {"oui": "00-80-c2", "subtype": 9, "index": 2, "value": "0005", "name": "ETS Configuration"}],
      "sourceMac": "02:00:00:00:00:09", "ttl": 120, "expiresInSeconds": 97.5, "ageSeconds": 100.0,
      "sinceChangeSeconds": 90.0, "sinceRefreshSeconds": 22.5}]})"));
}

TEST_F(CliShow, WhatWasNotSaidIsNotInTheJson) {
   bare(ethernet1, 1, "quiet")->expiryTimeIs(std::numeric_limits<double>::infinity());
   Json row = showJson({"neighbors"}).at("neighbors").at(0);
   for (const char* absent : {"portDescription", "systemName", "systemDescription", "capabilities",
                              "expiresInSeconds"}) {
      EXPECT_FALSE(row.contains(absent)) << absent;
   }
   EXPECT_EQ(row.at("managementAddresses"), Json::array());
}

TEST_F(CliShow, NeighborTableInTheOrderOfPortsAndAge) {
   bare(ethernet10, 1, "ten");
   bare(ethernet2, 12, "two-later");
   bare(ethernet2, 9, "two");
   talkative(ethernet1, 1);
   EXPECT_EQ(show({"neighbors"}),
             "Port          Neighbor   Chassis ID  Port ID  Description  Left/TTL  Capabilities\n"
             "Ethernet1     spine-1    rack        p1       uplink         98/120  Bridge\n"
             "Ethernet2     two        two         p1       -              98/120  -\n"
             "Ethernet2     two-later  two-later   p1       -              98/120  -\n"
             "Ethernet10/1  ten        ten         p1       -              98/120  -\n");
}

TEST_F(CliShow, NeighborsInDetail) {
   talkative(ethernet1, 3);
   EXPECT_EQ(show({"neighbors", "Ethernet1", "detail"}, {40}),
             "Ethernet1, neighbor 3\n"
             "  Chassis ID              rack (locally assigned)\n"
             "  Port ID                 p1 (interface name)\n"
             "  Port description        uplink\n"
             "  System name             spine-1\n"
             "  System description      -\n"
             "  Capabilities supported  Bridge, Router\n"
             "  Capabilities enabled    Bridge\n"
             "  Management address      192.0.2.1 (IPv4), interface index 7, OID 1.3.6\n"
             "  Unknown TLV             type 10: 0aff\n"
             "  Organization TLV        00-80-c2 subtype 9 (ETS Configuration): 6162\n"
             "  Organization TLV        00-80-c2 subtype 9 (ETS Configuration): 0005\n"
             "  Source MAC              02:00:00:00:00:09\n"
             "  Time to live            120 s\n"
             "  Time left               98 s\n"
             "  Discovered              1 min 40 s ago\n"
             "  Last change             1 min 30 s ago\n"
             "  Last refresh            22 s ago\n");
}

TEST_F(CliShow, NobodyThere) {
   EXPECT_EQ(show({"neighbors", "Ethernet2"}), "no neighbors on Ethernet2\n");
   EXPECT_EQ(show({"neighbors"}), "no neighbors\n");
   EXPECT_EQ(showJson({"neighbors"}), Json::parse(R"({"neighbors": []})"));
}

TEST_F(CliShow, ColoursStandBesideTheWords) {
   bare(ethernet1, 1, "late")->expiryTimeIs(now - 1);
   auto phy = Rex::make<Interface::EthPhyIntfStatus>(ethernet2);
   phy->linkStatusIs(Interface::linkDown);
   phys->intfStatusIs(phy);
   EXPECT_EQ(show({"interfaces"}, {80, true}),
             "\x1b[1mPort       Device  Link  MAC                LLDP\x1b[0m\n"
             "\x1b[31mEthernet2  -       down  00:00:00:00:00:00  transmit and receive\x1b[0m\n");
   EXPECT_THAT(show({"neighbors"}, {80, true}), HasSubstr("\n\x1b[2mEthernet1  late "));
   EXPECT_THAT(show({"neighbors"}, {80, false}), Not(HasSubstr("\x1b")));
   EXPECT_TRUE(LldpCli::wantsColours(nullptr, "xterm"));
   EXPECT_TRUE(LldpCli::wantsColours("", "xterm"));
   EXPECT_FALSE(LldpCli::wantsColours("1", "xterm"));
   EXPECT_FALSE(LldpCli::wantsColours(nullptr, "dumb"));
   EXPECT_FALSE(LldpCli::wantsColours(nullptr, nullptr));
}

TEST_F(CliShow, UnknownPorts) {
   CliDone done = ask({"neighbors", "Ethernet\n77"});
   EXPECT_EQ(done.status, 1);
   EXPECT_EQ(done.err,
             "lldp: no port 'Ethernet\\x0a77'; the ports are Ethernet1, Ethernet2, Ethernet10/1\n");
   for (const char* what : {"neighbors", "local", "statistics"}) {
      for (const char* port : {"Ethernet77", "", "../Ethernet1"}) {
         done = ask({what, port});
         EXPECT_EQ(done.status, 1);
         EXPECT_THAT(done.err, HasSubstr("the ports are Ethernet1, ")) << what;
      }
   }
}

TEST_F(CliShow, Local) {
   local->chassisIdentifierIs(
       {Lldp::ChassisIdSubtype::macAddress, Lldp::ChassisId("\x02\x00\x00\x00\x00\x01", 6)});
   local->sysNameIs(Lldp::BoundedString255("leaf-1"));
   local->sysCapSupportedIs(0x14);
   Lldp::ManagementAddress ip6;
   ip6.key = {2, Lldp::ManAddress("\x20\x01\x0d\xb8\0\0\0\0\0\0\0\0\0\0\0\1", 16)};
   local->ip6ManagementAddressIs(ip6);
   // Of those with a rank as many as are to be sent, the first ones first.
   for (char last : {3, 1, 2}) {
      Lldp::ManagementAddress::Key key{1, Lldp::ManAddress(std::string("\x0a\0\0", 3) + last)};
      local->managementAddressIs({key, 2, 9, {}});
      if (last < 3) local->managementAddressPrioIs({{}, uint32_t(last), 0, {}}, key);
   }
   config->portConfig(ethernet1)->adminStatusIs(Lldp::AdminStatus::rxOnly);
   EXPECT_EQ(showJson({"local", "Ethernet1"}), Json::parse(R"({"local": {
      "chassis": {"subtype": "macAddress", "id": "02:00:00:00:00:01"}, "systemName": "leaf-1",
      "capabilities": {"supported": ["Bridge", "Router"], "enabled": []},
      "managementAddresses": [{"family": "ipv6", "familyNumber": 2, "address": "2001:db8::1",
         "interfaceNumbering": "unknown", "interfaceNumber": 0},
         {"family": "ipv4", "familyNumber": 1, "address": "10.0.0.1",
         "interfaceNumbering": "ifIndex", "interfaceNumber": 9}],
      "timers": {"transmitInterval": 30, "holdTime": 120, "reinitDelay": 2, "transmitDelay": 2},
      "ports": [{"port": "Ethernet1", "portId": {"subtype": "interfaceName", "id": "Ethernet1"},
         "adminStatus": "rxOnly", "networkPolicies": []}]}})"));
   std::string words = show({"local"});
   EXPECT_THAT(words, HasSubstr("Chassis ID              02:00:00:00:00:01 (MAC address)\n"));
   EXPECT_THAT(
       words,
       HasSubstr("Ethernet1     Ethernet1 (interface name)     -            receive only\n"));
}

TEST_F(CliShow, WhoHasAnExternalTlvSent) {
   const Lldp::UnknownOrgDefTlv tlv{{{0x0A1B2C}, 1, 1}, Lldp::BoundedString507("hi", 2)};
   const Lldp::UnknownOrgDefTlv last{{{0x001B21}, 2, 1}, Lldp::BoundedString507("ack", 3)};
   for (const char* name : {"mine", "lost"}) {
      auto provider = Rex::make<Lldp::ExternalTlvConfig>();
      auto row = provider->externalTlvPortConfigIs(ethernet2);
      row->tlvIs(name == std::string("mine") ? tlv : Lldp::UnknownOrgDefTlv{tlv.key, {}});
      externalTlvs->entityPtrIs(name, provider);
   }
   local->localPort(ethernet2)->unknownOrgDefTlvIs(tlv);
   local->localPort(ethernet2)->unknownOrgDefTlvIs(last);
   EXPECT_EQ(showJson({"local"}).at("local").at("ports").at(1).at("externalTlvs"), Json::parse(R"([
      {"oui": "00-1b-21", "subtype": 2, "index": 1, "value": "61636b", "providers": [],
       "sent": true},
      {"oui": "0a-1b-2c", "subtype": 1, "index": 1, "value": "6869", "providers": ["mine"],
       "sent": false}])"));
   EXPECT_THAT(
       show({"local", "Ethernet2"}),
       testing::EndsWith("External TLV      00-1b-21 subtype 2: 61636b\n"
                         "External TLV      0a-1b-2c subtype 1: 6869, from mine, not sent\n"));
}

TEST_F(CliShow, TheTlvsOfAPort) {
   // What is not to be sent is not said: the aggregation here, the rest on another port.
   config->portConfig(ethernet1)->dot3EnabledTlvsIs({0x04});
   config->portConfig(ethernet1)->tiaEnabledTlvsIs({0x02});
   auto port = config->portConfig(ethernet2);
   port->portVlanTxEnableIs(true);
   port->dot3EnabledTlvsIs({0x08});
   port->poeAllocatedPowerFallbackIs(154);
   auto says = local->localPort(ethernet2);
   says->portVlanIdIs(7);
   says->linkAggregationInfoIs({3, 9});
   says->maximumFrameSizeInfoIs({9236});
   says->localNetworkPolicyTlvIs({1, false, true, 20, 5, 46});
   Json ports = showJson({"local"}).at("local").at("ports");
   EXPECT_EQ(ports.at(0), Json::parse(R"({
      "port": "Ethernet1", "portId": {"subtype": "interfaceName", "id": "Ethernet1"},
      "adminStatus": "txAndRx",
      "linkAggregation": {"capable": false, "enabled": false, "portId": 0},
      "medCapabilities": {"capabilities": ["LLDP-MED Capabilities"],
         "deviceClass": "network connectivity"}, "networkPolicies": []})"));
   EXPECT_EQ(ports.at(1), Json::parse(R"({
      "port": "Ethernet2", "portId": {"subtype": "interfaceName", "id": "Ethernet2"},
      "adminStatus": "txAndRx", "portVlanId": 7, "maximumFrameSize": 9236, "networkPolicies": [
         {"applicationNumber": 1, "application": "voice", "unknown": false, "tagged": true,
          "vlanId": 20, "priority": 5, "dscp": 46}], "powerFallbackWatts": 15.4})"));
   EXPECT_THAT(
       show({"local", "Ethernet2"}),
       testing::EndsWith("\n\n"
                         "Port                    Ethernet2\n"
                         "Port ID                 Ethernet2 (interface name)\n"
                         "Port description        -\n"
                         "LLDP                    transmit and receive\n"
                         "Port VLAN ID            7\n"
                         "Maximum frame size      9236\n"
                         "Network policy          voice: tagged, VLAN 20, priority 5, DSCP 46\n"
                         "Power without a report  15.4 W\n"));
}

TEST_F(CliShow, OneTableOfBothSupervisors) {
   auto theirs = Rex::make<Lldp::Status>();
   auto management = theirs->portStatusIs(Wirekit::IntfId("Management2/1"), 0.0);
   management->remoteSystemIs(1, msap("spine-1", "p1"));
   status->portStatusIs(Wirekit::IntfId("Ethernet3"), 0.0);  // which the merged table has lost
   auto all = Rex::make<Lldp::AllStatus>();
   all->portStatusIs(management);
   all->portStatusIs(status->portStatus(ethernet2));
   all->remTablesInsertsIs(77);
   agent.serve("l2discovery/lldp/status/all", *all);
   Json statistics = showJson({"statistics"}).at("statistics");
   EXPECT_EQ(statistics.at("table").at("inserts"), 77);
   std::string ports;
   for (const Json& port : statistics.at("ports"))
      ports += port.at("port").get<std::string>() + " ";
   EXPECT_EQ(ports, "Ethernet1 Ethernet2 Ethernet3 Ethernet10/1 Management2/1 ");
   EXPECT_THAT(show({"neighbors", "Management2/1"}), HasSubstr("spine-1"));
   EXPECT_THAT(ask({"neighbors", "Ethernet9"}).err, HasSubstr("Ethernet10/1, Management2/1"));
}

TEST_F(CliShow, OwnTableWhereNobodyKeepsOneOfBoth) {
   status->remTablesInsertsIs(5);
   agent.serve("l2discovery/lldp/status/all", *Rex::make<Lldp::AllStatus>());
   EXPECT_EQ(showJson({"statistics"}).at("statistics").at("table").at("inserts"), 5);
}

TEST_F(CliShow, Statistics) {
   bare(ethernet2, 1, "two");
   auto port = status->portStatus(ethernet2);
   port->rxFramesTotalInc(11);
   port->txFramesTotalInc(12);
   port->rxAgeoutsTotalInc(13);
   port->lastTxTimeIs(now - 3);
   port->ceeSeqNumToAckIs(4294967295);
   status->remTablesInsertsInc(4);
   status->remTablesLastChangeTimeIs(now - 61);
   Json all = showJson({"statistics"}).at("statistics");
   EXPECT_EQ(all.at("table"), Json::parse(R"({"inserts": 4, "deletes": 0, "drops": 0, "ageouts": 0,
      "sinceChangeSeconds": 61.0})"));
   EXPECT_EQ(all.at("ports").size(), 3u);
   EXPECT_EQ(all.at("ports").at(1), Json::parse(R"({"port": "Ethernet2", "neighbors": 1,
      "framesSent": 12, "framesShortOfRoom": 0, "framesNotSent": 0, "framesReceived": 11,
      "framesDiscarded": 0, "framesWithErrors": 0, "tlvsDiscarded": 0, "tlvsUnrecognized": 0,
      "neighborsAgedOut": 13, "sinceSentSeconds": 3.0, "ceeSequenceNumber": 4294967295})"));
   std::string words = show({"statistics", "Ethernet2"});
   EXPECT_THAT(words, HasSubstr("Frames received                             11\n"));
   EXPECT_THAT(words, HasSubstr("CEE sequence number received                4294967295\n"));
   words = show({"statistics"});
   EXPECT_THAT(words, HasSubstr("Last change                         1 min 1 s ago\n"));
   EXPECT_THAT(words, testing::ContainsRegex("\nEthernet2  +1  +12  +0  +0  +11  "));
}

TEST_F(CliShow, Interfaces) {
   for (const auto& port : {ethernet10, ethernet2}) {
      auto phy = Rex::make<Interface::EthPhyIntfStatus>(port);
      phy->linkStatusIs(port == ethernet2 ? Interface::linkUp : Interface::linkDown);
      phys->intfStatusIs(phy);
   }
   auto intf = Rex::make<Interface::IntfStatus>(ethernet2);
   intf->deviceNameIs("eth1");
   intfs->intfStatusIs(intf);
   config->portConfigDel(ethernet10);
   EXPECT_EQ(show({"interfaces"}),
             "Port          Device  Link  MAC                LLDP\n"
             "Ethernet2     eth1    up    00:00:00:00:00:00  transmit and receive\n"
             "Ethernet10/1  -       down  00:00:00:00:00:00  -\n");
   EXPECT_EQ(showJson({"interfaces"}), Json::parse(R"({"interfaces": [
      {"port": "Ethernet2", "device": "eth1", "link": "up", "mac": "00:00:00:00:00:00",
       "adminStatus": "txAndRx"},
      {"port": "Ethernet10/1", "link": "down", "mac": "00:00:00:00:00:00"}]})"));
}

TEST(CliCommandLine, MisuseIsOneLineAndStatus2) {
   const std::vector<std::pair<std::vector<std::string>, const char*>> cases{
       {{}, "show"},
       {{"show"}, "neighbors, local, statistics, interfaces, phones, policy, power, config"},
       {{"help"}, "'help' is not expected here: 'lldp' takes show, watch, set,"},
       {{"show", "nothing"}, "'nothing' is not expected here: 'show' takes neighbors, local,"},
       {{"show", "neighbors", "Ethernet1", "Ethernet2"}, "'neighbors' takes detail, PORT, --json"},
       {{"show", "local", "--detail"}, "'--detail' is not expected here: 'local' takes PORT,"},
       {{"man", "x"}, "'x' is not expected here: 'man' takes no more words"},
       {{"show", "neighbors", "--socket"}, "--socket"},
       {{"show", "\x1b[2J\n"}, "\\x1b[2J\\x0a"},
   };
   for (const auto& [words, named] : cases) {
      CliDone done = cliRun(words);
      EXPECT_EQ(done.status, 2);
      EXPECT_THAT(done.err, HasSubstr(named));
      EXPECT_EQ(std::count(done.err.begin(), done.err.end(), '\n'), 1) << done.err;
   }
   EXPECT_EQ(cliRun({"--help"}).status, 0);
}

TEST(CliCommandLine, NoAgent) {
   CliFakeAgent nobody;  // has not started to listen
   CliDone done = cliRun({"show", "neighbors", "--socket", nobody.socketPath()});
   EXPECT_EQ(done.status, 1);
   EXPECT_EQ(done.err,
             "lldp: no agent answers at " + nobody.socketPath() +
                 "; start one with 'lldp-agentd', or name its socket with --socket PATH\n");
   for (const std::string& path : {std::string(), std::string(200, 'x')}) {
      EXPECT_THAT(cliRun({"show", "local", "--socket", path}).err, HasSubstr("is no socket path"));
   }
}

TEST(CliCommandLine, AnswersThatAreNone) {
   auto say = [](const std::string& octets) {
      CliFakeAgent agent;
      agent.alwaysSay(octets);
      agent.start();
      CliDone done = cliRun({"show", "neighbors", "--socket", agent.socketPath()});
      EXPECT_EQ(done.status, 1);
      EXPECT_EQ(std::count(done.err.begin(), done.err.end(), '\n'), 1) << done.err;
      return done.err;
   };
   auto http = [](const std::string& status, const std::string& body) {
      return "HTTP/1.1 " + status + "\r\nContent-Length: " + std::to_string(body.size()) +
             "\r\n\r\n" + body;
   };
   EXPECT_THAT(say("HTTP/1.1 200 OK\r\nContent-Le"), HasSubstr("broke off"));
   EXPECT_THAT(say("HTTP/1.1 200 OK\r\nContent-Length: 9\r\n\r\n{"), HasSubstr("broke off"));
   EXPECT_THAT(say("220 mail\r\n\r\n"), HasSubstr("does not speak HTTP"));
   EXPECT_THAT(say(http("200 OK", "{")), HasSubstr("not JSON"));
   EXPECT_THAT(say(http("200 OK", "[1]")), HasSubstr("not understood"));
   EXPECT_THAT(say(http("403 Forbidden", "")), HasSubstr("no right"));
   EXPECT_THAT(say(http("503 Busy", R"({"error": {"message": "too many clients\u001b"}})")),
               HasSubstr("too many clients\\x1b (503)"));
}

TEST(CliCommandLine, ASilentAgentIsGivenUp) {
   CliFakeAgent agent;
   agent.answer("/v1/agent", "200 OK", "");
   agent.alwaysSay("HTTP/1.1 100 Continue\r\n");
   agent.start();
   LldpCli::Client client(agent.socketPath(), {std::chrono::milliseconds(20)});
   EXPECT_THROW(client.get("/v1/agent"), LldpCli::Failure);
}

TEST(CliCommandLine, OutputThatCannotBeWritten) {
   CliFakeAgent agent;
   agent.serve("l2discovery/lldp/status/local/1", *Rex::make<Lldp::Status>());
   agent.start();
   std::ofstream full("/dev/full");
   std::ostringstream err;
   EXPECT_EQ(
       LldpCli::runCommandLine({"show", "neighbors", "--socket", agent.socketPath()}, {full}, err),
       1);
   EXPECT_THAT(err.str(), HasSubstr("cannot write"));
}

}  // namespace
