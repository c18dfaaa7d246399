// Network policies: the operator's rows, what neighbours ask for, and what the port tells of them.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/InputFixture.h"

using namespace Lldp;
using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using Wirekit::IntfId;

namespace {

struct InputNetworkPolicy : testing::Test {
   LldpTest::InputFixture input;

   InputNetworkPolicy() {
      input.root->networkPolicySmIs(input.config, input.status, input.localSystem);
      input.startActive();
   }
   ~InputNetworkPolicy() override { input.root->networkPolicySmDel(); }

   CliPortConfig::Ptr row() { return input.cliConfig->cliPortConfigIs(IntfId("Ethernet1")); }
   void policy(uint8_t appType, uint16_t vlanId) {
      NetworkPolicyConfig policy;
      policy.appType = appType;
      policy.vlanId = vlanId;
      policy.tagged = true;
      row()->networkPolicyConfigIs(policy);
   }
   RemoteSystem::Ptr ask(int index, const std::vector<uint8_t>& appTypes) {
      RemoteSystem::Ptr neighbour;
      Rex::Dispatcher::run([&] {
         neighbour = input.portStatus("Ethernet1")->remoteSystemIs(index, RemoteSystem::Msap());
         neighbour->networkPolicyTlvDelAll();
         for (uint8_t appType : appTypes) neighbour->networkPolicyTlvIs({appType});
         input.status->remTablesLastChangeTimeIs(input.context.now());
      });
      return neighbour;
   }
   // "<application>:<VLAN>" of each policy that is told.
   std::vector<std::string> told() {
      std::vector<std::string> all;
      for (auto [appType, tlv] : input.localPort("Ethernet1")->localNetworkPolicyTlv()) {
         EXPECT_TRUE(tlv.appType == appType && tlv.tagged && !tlv.unknown);
         all.push_back(std::to_string(appType) + ":" + std::to_string(tlv.vlanId));
      }
      return all;
   }
   bool claimed() { return input.localPort("Ethernet1")->medCapabilities().capabilities & 0x02; }
};

}  // namespace

TEST_F(InputNetworkPolicy, WhatIsAskedForIsTold) {
   input.intf("Ethernet1");
   input.context.traceOn("LldpAgent");
   struct {
      const char* what;
      std::vector<std::pair<uint8_t, uint16_t>> rows;  // application and VLAN
      std::vector<uint8_t> asked;
      std::vector<std::string> told;
      const char* words = nullptr;
   } cases[] = {
       {"wildcard", {{0, 20}}, {6, 7}, {"6:20", "7:20"}},
       {"own row before the wildcard", {{0, 20}, {7, 30}}, {6, 7}, {"6:20", "7:30"}},
       {"not supported",
        {{0, 20}, {2, 30}},
        {2},
        {},
        "Skipping unsupported LLDP-MED Network Policy app 2 in intf Ethernet1"},
       {"signalling with the policy of its stream", {{0, 20}}, {6, 8}, {"6:20"}},
       {"signalling with another", {{6, 20}, {8, 30}}, {6, 8}, {"6:20", "8:30"}},
       {"signalling alone, stream not asked for", {{6, 20}, {8, 20}}, {8}, {}},
       {"signalling without its stream", {{8, 20}}, {8}, {"8:20"}},
       {"no row", {{6, 20}}, {9}, {}},
       {"no policy", {}, {6}, {}},
       {"0 is no request", {{0, 20}}, {0}, {}},
       {"largest", {{255, 20}}, {255}, {"255:20"}},
       {"nothing asked",
        {{0, 20}},
        {},
        {},
        "Not adding LLDP-MED Network Policy TLV - no request received in intf Ethernet1"},
   };
   for (const auto& c : cases) {
      SCOPED_TRACE(c.what);
      row()->networkPolicyConfigDelAll();
      ask(1, c.asked);
      input.context.traces.clear();
      for (auto [appType, vlanId] : c.rows) policy(appType, vlanId);
      EXPECT_EQ(told(), c.told);
      EXPECT_EQ(claimed(), !c.rows.empty());
      if (c.words) {
         EXPECT_THAT(input.context.takeTraces(), Contains(c.words));
      }
   }
}

TEST_F(InputNetworkPolicy, ListFollowsRowsRequestsAndSwitches) {
   policy(0, 20);
   EXPECT_FALSE(input.localPort("Ethernet1"));
   input.intf("Ethernet1");
   EXPECT_TRUE(claimed()) << "a row that came before the port";
   ask(1, {6});
   EXPECT_THAT(told(), ElementsAre("6:20"));
   ask(2, {7, 9});
   EXPECT_THAT(told(), ElementsAre("6:20", "7:20", "9:20"));
   ask(1, {});
   EXPECT_THAT(told(), ElementsAre("7:20", "9:20"));
   // The list outlives the neighbour until the next event.
   input.portStatus("Ethernet1")->remoteSystemDel(2);
   EXPECT_THAT(told(), ElementsAre("7:20", "9:20"));
   ask(3, {7});
   EXPECT_THAT(told(), ElementsAre("7:20"));

   input.cliConfig->tlvNetworkPolicyIs(false);
   EXPECT_THAT(told(), IsEmpty());
   input.cliConfig->tlvNetworkPolicyIs(true);
   EXPECT_THAT(told(), ElementsAre("7:20"));
   input.cliConfig->enabledIs(false);
   EXPECT_THAT(told(), IsEmpty());
   EXPECT_FALSE(claimed());
   input.cliConfig->enabledIs(true);
   EXPECT_THAT(told(), ElementsAre("7:20"));
   EXPECT_TRUE(claimed());
   EXPECT_EQ(input.localPort("Ethernet1")->medCapabilities(), (MedCapabilitiesInfo{0x03, 4}));
   row()->networkPolicyConfigDel(0);
   EXPECT_THAT(told(), IsEmpty());
   EXPECT_FALSE(claimed());
}

// However many applications a frame names; also where one reaction brings two frames.
TEST_F(InputNetworkPolicy, AFrameMakesTheListOnce) {
   input.intf("Ethernet1");
   policy(0, 20);
   input.context.traceOn("LldpAgent");
   ask(1, {6, 7, 9});
   auto traces = input.context.takeTraces();
   auto count = [&](const char* words) {
      return std::ranges::count_if(traces, [&](const auto& t) { return t.starts_with(words); });
   };
   EXPECT_EQ(count("NetworkPolicyPortStatusSm::handleNetworkPolicyRequest intf Ethernet1"), 3);
   EXPECT_EQ(count("doSyncLocalNetworkPolicy intf Ethernet1"), 1);
   Rex::Dispatcher::run([&] {
      ask(1, {6});
      ask(2, {10});
   });
   EXPECT_THAT(told(), ElementsAre("6:20", "10:20"));
}

// What stands when the machine is made, and a port that is made anew in one step.
TEST_F(InputNetworkPolicy, PortsAreTakenUp) {
   policy(0, 20);
   input.root->networkPolicySmDel();
   input.intf("Ethernet1");
   auto neighbour = ask(1, {6});
   EXPECT_THAT(told(), IsEmpty());
   input.root->networkPolicySmIs(input.config, input.status, input.localSystem);
   EXPECT_THAT(told(), ElementsAre("6:20"));
   Rex::Dispatcher::run([&] {
      input.status->portStatusDel(IntfId("Ethernet1"));
      input.status->portStatusIs(IntfId("Ethernet1"), 1.0);
   });
   EXPECT_THAT(told(), IsEmpty());
   neighbour->networkPolicyTlvIs({7});
   EXPECT_THAT(told(), IsEmpty()) << "one that has gone";
   ask(1, {9});
   EXPECT_THAT(told(), ElementsAre("9:20"));
}
