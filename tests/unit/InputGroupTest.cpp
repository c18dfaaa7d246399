// VLAN and link aggregation of a port, alone and as a member of groups.
#include <gtest/gtest.h>

#include "support/ChangeLog.h"
#include "support/InputFixture.h"

using namespace Lldp;
using namespace LldpTest;
using Wirekit::IntfId;

namespace {

constexpr auto untagged = Bridging::switchportAccess;

struct GroupFixture : InputFixture {
   GroupFixture() {
      number("Port-Channel10", 1010);
      number("Port-Channel20", 1020);
      startActive();
   }
   Interface::EthLagIntfStatus::Ptr group(const char* name) {
      auto row = Rex::make<Interface::EthLagIntfStatus>(IntfId(name));
      lagDir->intfStatusIs(row);
      return row;
   }
   void switchport(const char* name, uint16_t vlan, Bridging::SwitchportMode mode = untagged) {
      Rex::Dispatcher::run([&] {
         auto row = bridging->switchIntfConfigIs(IntfId(name));
         row->switchportModeIs(mode);
         row->nativeVlanIs(vlan);
      });
   }
   // "<VLAN> <aggregation status> <number of the group> <administrative status>" of Ethernet1.
   std::string port() {
      auto row = localPort("Ethernet1");
      auto info = row->linkAggregationInfo();
      return std::to_string(row->portVlanId().value()) + " " + std::to_string(info.status.value()) +
             " " + std::to_string(static_cast<int32_t>(info.portId)) + " " +
             Rex::valueToString(portConfig("Ethernet1")->adminStatus()).stdString();
   }
};

const IntfId member("Ethernet1");

}  // namespace

TEST(InputGroup, MemberSpeaksForItsGroup) {
   GroupFixture input;
   input.intf("Ethernet1");
   input.switchport("Ethernet1", 5);
   input.switchport("Port-Channel10", 10);
   auto ten = input.group("Port-Channel10");
   auto twenty = input.group("Port-Channel20");
   EXPECT_EQ(input.port(), "5 1 0 txAndRx");
   twenty->memberIs(member);  // a group that nobody configured: no VLAN
   EXPECT_EQ(input.port(), "0 3 1020 txAndRx");
   input.switchport("Port-Channel20", 20, Bridging::switchportMonitorOut);
   EXPECT_EQ(input.port(), "20 3 1020 rxOnly");
   ten->memberIs(member);  // of two groups the smaller one counts
   EXPECT_EQ(input.port(), "10 3 1010 txAndRx");
   input.switchport("Port-Channel20", 21);
   input.switchport("Ethernet1", 6, Bridging::switchportMonitorIn);  // both have no say now
   EXPECT_EQ(input.port(), "10 3 1010 txAndRx");
   twenty->memberDel(member);
   EXPECT_EQ(input.port(), "10 3 1010 txAndRx");
   twenty->memberIs(member);
   ten->memberDel(member);
   EXPECT_EQ(input.port(), "21 3 1020 txAndRx");
   input.lagDir->intfStatusDel(IntfId("Port-Channel20"));
   EXPECT_EQ(input.port(), "6 1 0 rxOnly");
   twenty->memberDel(member);  // nobody listens to it any more
   EXPECT_EQ(input.root->portToLagsMaps(), 0u);
}

TEST(InputGroup, RoutedPortHasNoVlan) {
   GroupFixture input;
   input.switchport("Ethernet1", 5, Bridging::switchportRouted);
   input.intf("Ethernet1");
   EXPECT_EQ(input.port(), "0 1 0 txAndRx");
   input.switchport("Ethernet1", 5, Bridging::switchportTrunk);
   EXPECT_EQ(input.port(), "5 1 0 txAndRx");
   input.switchport("Ethernet1", 4094, Bridging::switchportRouted);
   EXPECT_EQ(input.port(), "0 1 0 txAndRx");
   input.bridging->switchIntfConfig(member)->switchportModeIs(untagged);
   EXPECT_EQ(input.port(), "4094 1 0 txAndRx");
   // A configuration that goes leaves everything as it was; the port's next one counts at once.
   input.bridging->switchIntfConfigDel(member);
   EXPECT_EQ(input.port(), "4094 1 0 txAndRx");
   input.switchport("Ethernet1", 7);
   EXPECT_EQ(input.port(), "7 1 0 txAndRx");
}

TEST(InputGroup, SourcesComeInAnyOrder) {
   std::string order = "cgmp";  // configuration, group, member, port
   do {
      GroupFixture input;
      auto row = Rex::make<Interface::EthLagIntfStatus>(IntfId("Port-Channel10"));
      for (char source : order) {
         if (source == 'c') input.switchport("Port-Channel10", 10);
         if (source == 'g') input.lagDir->intfStatusIs(row);
         if (source == 'm') row->memberIs(member);
         if (source == 'p') input.intf("Ethernet1");
      }
      EXPECT_EQ(input.port(), "10 3 1010 txAndRx") << order;
   } while (std::next_permutation(order.begin(), order.end()));
}

TEST(InputGroup, GroupPublishedAnewTakesItsMembersOutAndIn) {
   GroupFixture input;
   input.intf("Ethernet1");
   auto old = input.group("Port-Channel10");
   old->memberIs(member);
   // The group's number is read when the port joins.
   input.number("Port-Channel10", 2010);
   EXPECT_EQ(input.port(), "0 3 1010 txAndRx");
   auto replacement = Rex::make<Interface::EthLagIntfStatus>(IntfId("Port-Channel10"));
   replacement->memberIs(member);
   input.lagDir->intfStatusIs(replacement);
   EXPECT_EQ(input.port(), "0 3 2010 txAndRx");
   old->memberDel(member);
   EXPECT_EQ(input.port(), "0 3 2010 txAndRx");
   input.intfDir->intfStatusDel(IntfId("Port-Channel10"));
   input.group("Port-Channel10")->memberIs(member);
   EXPECT_EQ(input.port(), "0 3 -1 txAndRx");  // a group without a number
}

// What one reaction changes is told afterwards, one change at a time: a group may be gone when its
// member is told, and the other way round.
TEST(InputGroup, MemberAndGroupChangeInOneReaction) {
   GroupFixture input;
   input.intf("Ethernet1");
   IntfId ten("Port-Channel10");
   auto row = input.group("Port-Channel10");
   Rex::Dispatcher::run([&] { row->memberIs(member), input.lagDir->intfStatusDel(ten); });
   EXPECT_EQ(input.port(), "0 1 0 txAndRx");
   Rex::Dispatcher::run([&] {
      input.lagDir->intfStatusIs(row);
      row->memberDel(member);
   });
   EXPECT_EQ(input.port(), "0 1 0 txAndRx");
   row->memberIs(member);
   Rex::Dispatcher::run([&] { row->memberDel(member), row->memberIs(member); });
   EXPECT_EQ(input.port(), "0 3 1010 txAndRx");
   Rex::Dispatcher::run([&] { input.lagDir->intfStatusDel(ten), row->memberDel(member); });
   EXPECT_EQ(input.port(), "0 1 0 txAndRx");
   EXPECT_EQ(input.root->portToLagsMaps(), 0u);
   // The reverse: a member that was not counted yet when its group goes.
   input.lagDir->intfStatusIs(row);
   Rex::Dispatcher::run([&] { input.lagDir->intfStatusDel(ten), row->memberIs(member); });
   EXPECT_EQ(input.port(), "0 1 0 txAndRx");
   EXPECT_EQ(input.root->portToLagsMaps(), 0u);
}

TEST(InputGroupDeathTest, ManagementPortAsMember) {
   GroupFixture input;
   input.intf("Management1");
   auto row = input.group("Port-Channel10");
   EXPECT_DEATH(row->memberIs(IntfId("Management1")), "status.aggCapable\\(\\)");
}
