// What the operator sees and sets of telephones, network policies and power.
#include <gmock/gmock.h>

#include "Foreign/NbrClassification.h"
#include "Foreign/PoePortStatus.h"
#include "Rex/Dir.h"
#include "cli/Client.h"
#include "cli/MacAddress.h"
#include "model/Config.h"
#include "model/LocalSystem.h"
#include "model/Status.h"
#include "unit/CliFakeAgent.h"
#include "unit/CliRun.h"

using LldpCli::Json;
using Wirekit::EthAddr;
using Wirekit::IntfId;

namespace {

const IntfId ethernet1("Ethernet1");
const IntfId ethernet2("Ethernet2");

struct CliEndpoints : testing::Test {
   CliFakeAgent agent;
   Rex::Ptr<Lldp::Status> status = Rex::make<Lldp::Status>();
   Rex::Ptr<Lldp::Config> config = Rex::make<Lldp::Config>();
   Rex::Ptr<Lldp::LocalSystem> local = Rex::make<Lldp::LocalSystem>();
   Rex::Ptr<Rex::Dir> reports = Rex::make<Rex::Dir>();
   Rex::Ptr<Identity::NbrClassification::CliConfig> entries =
       Rex::make<Identity::NbrClassification::CliConfig>();
   Rex::Ptr<Identity::NbrClassification::Status> phones =
       Rex::make<Identity::NbrClassification::Status>();
   bool serving = false;

   CliEndpoints() {
      for (const auto& port : {ethernet2, ethernet1}) {
         status->portStatusIs(port, 0.0);
         config->portConfigIs(port);
         local->localPortIs(port);
      }
   }
   void phone(uint8_t number, const IntfId& intfId, uint32_t flags, bool entered) {
      Identity::NbrClassification::Neighbor row{{2, 0, 0, 0, 0, number}, intfId, {flags, 0}};
      phones->neighborIs(row);
      if (flags) phones->phoneIs(row.ethAddr, row.ethAddr);
      if (entered) entries->neighborIs(row);
   }
   CliDone run(std::vector<std::string> words) {
      if (!serving) {
         agent.serve("l2discovery/lldp/status/local/1", *status);
         agent.serve("l2discovery/lldp/config", *config);
         agent.serve("l2discovery/lldp/localSystem", *local);
         agent.serve("environment/power/status/poePort", *reports);
         agent.serve("identity/nbrClassification/cliConfig", *entries);
         agent.serve("identity/nbrClassification/status", *phones);
         agent.answer("PATCH /v1/entity/identity/nbrClassification/cliConfig", "204 No Content",
                      "");
         agent.start();
         serving = true;
      }
      words.insert(words.begin(), {"--socket", agent.socketPath()});
      return cliRun(words);
   }
   // What the last request that changed something held.
   Json patched() {
      auto requests = agent.requests();
      for (auto at = requests.rbegin(); at != requests.rend(); ++at) {
         if (at->starts_with("PATCH ")) return Json::parse(at->substr(at->find('{')));
      }
      return nullptr;
   }
};

}  // namespace

TEST_F(CliEndpoints, Phones) {
   phone(3, IntfId(), 0, true);
   phone(2, IntfId("Ethernet10"), 1, false);
   phone(1, ethernet2, 1, true);
   EXPECT_EQ(run({"show", "phones"}).out,
             "Port        MAC                Phone  Known by\n"
             "-           02:00:00:00:00:03  no     operator\n"
             "Ethernet2   02:00:00:00:00:01  yes    operator\n"
             "Ethernet10  02:00:00:00:00:02  yes    LLDP\n");
   EXPECT_EQ(Json::parse(run({"show", "phones", "--json"}).out).at("phones").at(2),
             Json::parse(R"({"mac": "02:00:00:00:00:02", "port": "Ethernet10", "phone": true,
                             "source": "lldp"})"));
}

TEST_F(CliEndpoints, NothingToShow) {
   EXPECT_EQ(run({"show", "phones"}).out, "no phones\n");
   EXPECT_EQ(run({"show", "policy"}).out, "no policies\n");
   EXPECT_EQ(run({"show", "power"}).out, "no port feeds a device or is asked to\n");
   EXPECT_EQ(run({"show", "power", "Ethernet9"}).status, 1);
   EXPECT_EQ(run({"show", "policy", "Ethernet9"}).status, 1);
}

TEST_F(CliEndpoints, PoliciesAndWhoIsToldOfThem) {
   config->portConfig(ethernet1)->networkPolicyConfigIs({7, "video", true, 30, 5, 46});
   config->portConfig(ethernet1)->networkPolicyConfigIs({0, "default", false, 20, 0, 0});
   for (uint8_t appType : {6, 7, 9}) {
      uint16_t vlanId = appType == 7 ? 30 : 20;
      local->localPort(ethernet1)->localNetworkPolicyTlvIs({appType, false, true, vlanId});
   }
   EXPECT_EQ(run({"show", "policy"}).out,
             "Port       Application      Policy   VLAN  Tagged  Priority  DSCP  Told for\n"
             "Ethernet1  any              default    20  no             0     0  video "
             "conferencing, reserved 9\n"
             "Ethernet1  streaming video  video      30  yes            5    46  streaming "
             "video\n");
   Json ports = Json::parse(run({"show", "policy", "--json"}).out).at("policies");
   ASSERT_EQ(ports.size(), 1u);
   EXPECT_EQ(ports[0].at("configured").at(1).at("name"), "video");
   EXPECT_EQ(ports[0].at("told").size(), 3u);
}

TEST_F(CliEndpoints, PowerOfEachPort) {
   auto report = Rex::make<Environment::Power::PoePortStatus>();
   report->portStatusIs({Environment::Power::poePortDelivering, 154});
   reports->entityPtrIs("Ethernet1", report);
   reports->entityPtrIs("no port", Rex::make<Lldp::Status>());
   config->portConfig(ethernet2)->poeAllocatedPowerFallbackIs(70);
   for (uint32_t type : {0u, 1u}) {
      auto neighbor = status->portStatus(ethernet1)->remoteSystemIs(static_cast<int>(type),
                                                                    Lldp::RemoteSystem::Msap());
      neighbor->powerViaMdiTlvReceivedIs(true);
      Lldp::PowerViaMdiInfo info;
      info.tlvFormat = 1;
      info.powerType = type;
      info.pdRequestedPower = 130;
      neighbor->powerViaMdiInfoIs(info);
      neighbor->ethAddrIs({2, 0, 0, 0, 0, 7});
   }
   EXPECT_EQ(run({"show", "power"}).out,
             "Port       State       Allowed  Fallback  Requested\n"
             "Ethernet1  delivering   15.4 W         -  13.0 W by 02:00:00:00:00:07\n"
             "Ethernet2  -                 -     7.0 W  -\n");
   EXPECT_EQ(Json::parse(run({"show", "power", "Ethernet1", "--json"}).out),
             Json::parse(R"({"power": [{"port": "Ethernet1", "state": "delivering",
                "allowedWatts": 15.4,
                "requests": [{"sourceMac": "02:00:00:00:00:07", "requestedWatts": 13.0}]}]})"));
}

TEST_F(CliEndpoints, EntriesAreSetAndUnset) {
   phone(1, IntfId(), 1, true);
   phone(2, IntfId(), 0, true);
   EXPECT_EQ(run({"set", "phone", "0200.0000.0001", "no"}).status, 0);
   EXPECT_EQ(patched().at("neighbor").size(), 2u);
   EXPECT_EQ(patched().at("neighbor").at(1),
             Json::parse(R"({"ethAddr": "02:00:00:00:00:01", "classification": {"flags": 0}})"));
   EXPECT_EQ(run({"unset", "phone", "02-00-00-00-00-02"}).status, 0);
   EXPECT_EQ(patched().at("neighbor").size(), 1u);
   size_t asked = agent.requests().size();
   for (const std::vector<std::string>& bad : std::vector<std::vector<std::string>>{
            {"set", "phone", "desk", "yes"},
            {"set", "phone", "02:00:00:00:00:01", "perhaps"},
            {"set", "phone", "02:00:00:00:00:01"},
            {"set", "interval", "10", "phone", "02:00:00:00:00:01", "yes"},
            {"unset", "phone"}}) {
      EXPECT_EQ(run(bad).status, 2) << testing::PrintToString(bad);
   }
   EXPECT_EQ(agent.requests().size(), asked);
}

TEST_F(CliEndpoints, PhonesAreClearedByWhatIsNamed) {
   phone(1, ethernet1, 1, false);
   entries->clearRequestIs("of the switch", {1, "x", "y", 1, "z"});
   entries->clearRequestIs("lldp 5", {1, "x", "y", 1, "z"});
   struct {
      std::vector<std::string> words;
      unsigned type;
      const char* target;
   } cases[] = {
       {{}, 3, ""}, {{"Ethernet1"}, 2, "Ethernet1"}, {{"0200.0000.000A"}, 1, "02:00:00:00:00:0a"}};
   for (auto& c : cases) {
      c.words.insert(c.words.begin(), {"clear", "phones"});
      EXPECT_EQ(run(c.words).out, "0 phones cleared\n") << "it is there still";
      Json requests = patched().at("clearRequest");
      ASSERT_EQ(requests.size(), 2u) << "an earlier one of ours makes room";
      EXPECT_EQ(requests[0].at("key"), "of the switch");
      EXPECT_EQ(requests[1].at("value").at("targetType"), c.type);
      EXPECT_EQ(requests[1].at("value").value("target", ""), c.target);
      EXPECT_EQ(requests[1].at("value").at("clearedBy"), "admin");
   }
}

TEST(CliMacAddress, FormsThatAreTaken) {
   for (const char* typed : {"02:00:00:00:00:aF", "02-00-00-00-00-AF", "0200.0000.00af"}) {
      EXPECT_EQ(LldpCli::macAddress(typed), "02:00:00:00:00:af") << typed;
   }
   for (const char* typed : {"", "02:00:00:00:00", "0200000000af", "02:00-00:00:00:af",
                             "02:00:00:00:00:af:", "0200:0000:00af", "02.00.00.00.00.af"}) {
      EXPECT_FALSE(LldpCli::macAddress(typed)) << typed;
   }
}
