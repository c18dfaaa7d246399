// Random link aggregation: ports, groups, memberships and switchport configurations come and go in
// any order, and after every step each port speaks for the interface that governs it: its group, of
// two the smaller one, or else the port itself.
#include <gtest/gtest.h>

#include <map>
#include <random>
#include <set>

#include "support/InputFixture.h"
#include "support/Seeds.h"

using namespace LldpTest;
using Wirekit::IntfId;

namespace {

constexpr std::array<const char*, 3> portNames = {"Ethernet1", "Ethernet2", "Ethernet3/1"};
// In their order, which is that of their numbers.
constexpr std::array<const char*, 3> groupNames = {"Port-Channel2", "Port-Channel10",
                                                   "Port-Channel100"};

struct Told {
   int vlan = 0;
   int aggregation = 1;
   int32_t groupNumber = 0;
   bool mayTransmit = true;
   bool operator==(const Told&) const = default;
   friend std::ostream& operator<<(std::ostream& out, const Told& told) {
      return out << told.vlan << " " << told.aggregation << " " << told.groupNumber << " "
                 << told.mayTransmit;
   }
};

class GroupWorld {
 public:
   explicit GroupWorld(unsigned seed) : random_(seed) { input_.startActive(); }

   void step() {
      act();
      for (const char* name : portNames) {
         IntfId port(name);
         ASSERT_EQ(bool(input_.localPort(name)), expected_.count(port) > 0) << name << " " << deed_;
         if (expected_.count(port)) check(port);
      }
      size_t members = 0;
      for (const char* name : portNames) members += !groupOf(IntfId(name)).empty();
      ASSERT_EQ(input_.root->portToLagsMaps(), members) << deed_;
   }

 private:
   struct Switchport {
      int mode;
      int vlan;
   };

   size_t pick(size_t count) { return random_() % count; }
   bool flip() { return random_() % 2; }

   IntfId groupOf(const IntfId& port) {
      for (const char* name : groupNames) {
         auto row = input_.lagDir->intfStatus(IntfId(name));
         if (row && row->memberHas(port) && IntfId(name) != replaced_) return IntfId(name);
      }
      return IntfId();
   }
   IntfId governing(const IntfId& port) {
      IntfId group = groupOf(port);
      return group.empty() ? port : group;
   }
   int32_t numberOf(const IntfId& group) {
      if (group.empty()) return 0;
      auto row = input_.intfDir->intfStatus(group);
      return row ? row->ifIndex() : -1;
   }

   void check(const IntfId& port) {
      auto row = input_.localSystem->localPort(port);
      Told told{row->portVlanId().value(), row->linkAggregationInfo().status.value(),
                static_cast<int32_t>(row->linkAggregationInfo().portId),
                input_.config->portConfig(port)->adminStatus() == Lldp::AdminStatus::txAndRx};
      if (inOneReaction_) {
         // On the way the port may have been elsewhere. What is left over when nobody governs it,
         // and whether the group's number was read anew, depends on the way.
         Told& expected = expected_[port];
         bool governed = switchports_.count(governing(port));
         if (!governed && told.vlan == 0) expected.vlan = 0;
         if (told.groupNumber == numberOf(groupOf(port))) expected.groupNumber = told.groupNumber;
         if (!governed) expected.mayTransmit = told.mayTransmit;
      }
      ASSERT_EQ(told, expected_[port]) << port << " " << deed_;
   }

   void act() {
      inOneReaction_ = false;
      IntfId port(portNames[pick(portNames.size())]);
      IntfId group(groupNames[pick(groupNames.size())]);
      switch (pick(7)) {
         case 0:
            return actOnPort(port);
         case 1:
            return actOnGroup(group);
         case 2:
            return actOnNumber(group);
         case 3:
            return actInOneReaction(port, group);
         case 4:
            return actOnMember(port, group);
         default:
            return actOnSwitchport(flip() ? port : group);
      }
   }
   void actOnPort(const IntfId& port) {
      deed_ = "port";
      if (expected_.erase(port)) return input_.phyDir->intfStatusDel(port);
      input_.intf(port.stringValue().stdString().c_str());
      expected_[port] = {};
      govern(port);
      aggregate(port);
   }
   void actOnGroup(const IntfId& group) {
      auto old = input_.lagDir->intfStatus(group);
      auto row = pick(3) ? Rex::make<Interface::EthLagIntfStatus>(group) : nullptr;
      deed_ = row ? (old ? "group replaced" : "group") : "group gone";
      for (const char* name : portNames) {
         if (row && flip()) row->memberIs(IntfId(name));
      }
      // Its members leave, and those of the new one join.
      std::map<IntfId, IntfId> from = allGoverning();
      replaced_ = group;
      moveAll(from);
      for (const char* name : portNames) {
         if (old && old->memberHas(IntfId(name))) decide(IntfId(name));
      }
      from = allGoverning();
      row ? input_.lagDir->intfStatusIs(row) : input_.lagDir->intfStatusDel(group);
      replaced_ = IntfId();
      moveAll(from);
      for (const char* name : portNames) {
         if (row && row->memberHas(IntfId(name))) decide(IntfId(name));
      }
   }
   void actOnNumber(const IntfId& group) {
      deed_ = "number";  // read when a port joins
      if (pick(3)) return input_.number(group.stringValue().stdString(), 1 + int32_t(pick(1000)));
      input_.intfDir->intfStatusDel(group);
   }
   void actOnMember(const IntfId& port, const IntfId& group) {
      auto row = input_.lagDir->intfStatus(group);
      if (!row) return;
      std::map<IntfId, IntfId> from = allGoverning();
      deed_ = row->memberHas(port) ? "leaves" : "joins";
      row->memberHas(port) ? row->memberDel(port) : void(row->memberIs(port));
      moveAll(from);
      decide(port);  // whether or not it moved
   }
   // Several changes that are told one after the other when all are made.
   void actInOneReaction(const IntfId& port, const IntfId& group) {
      deed_ = "in one reaction:";
      inOneReaction_ = true;
      auto shelf = Rex::make<Interface::EthLagIntfStatus>(group);
      std::map<IntfId, IntfId> from = allGoverning();
      Rex::Dispatcher::run([&] {
         for (size_t n = 2 + pick(3); n > 0; --n) {
            auto row = input_.lagDir->intfStatus(group);
            if (row && flip()) shelf = row;
            switch (pick(4)) {
               case 0:
                  deed_ += " group goes";
                  input_.lagDir->intfStatusDel(group);
                  break;
               case 1:
                  deed_ += " group comes";
                  input_.lagDir->intfStatusIs(shelf);
                  break;
               case 2:
                  deed_ += " member goes";
                  (row ? row : shelf)->memberDel(port);
                  break;
               default:
                  deed_ += " member comes";
                  (row ? row : shelf)->memberIs(port);
            }
         }
      });
      moveAll(from);
      for (const char* name : portNames) decide(IntfId(name));
   }
   void actOnSwitchport(const IntfId& intf) {
      if (switchports_.count(intf) && pick(4) == 0) {
         deed_ = "configuration gone";  // whom it governed stays as it was
         switchports_.erase(intf);
         return input_.bridging->switchIntfConfigDel(intf);
      }
      deed_ = "configuration";
      Switchport made{int(pick(7)), 1 + int(pick(4094))};
      switchports_[intf] = made;
      Rex::Dispatcher::run([&] {
         auto row = input_.bridging->switchIntfConfigIs(intf);
         row->switchportModeIs(static_cast<Bridging::SwitchportMode>(made.mode));
         row->nativeVlanIs(static_cast<uint16_t>(made.vlan));
      });
      for (const char* name : portNames) {
         if (governing(IntfId(name)) == intf) govern(IntfId(name));
      }
      decide(intf);  // also of one that its group governs
   }

   std::map<IntfId, IntfId> allGoverning() {
      std::map<IntfId, IntfId> all;
      for (const char* name : portNames) all[IntfId(name)] = governing(IntfId(name));
      return all;
   }
   void moveAll(const std::map<IntfId, IntfId>& from) {
      for (const auto& [port, old] : from) {
         if (governing(port) == old) continue;
         auto found = expected_.find(port);
         if (found == expected_.end()) continue;
         if (switchports_.count(old)) found->second.vlan = 0;
         govern(port);
         aggregate(port);
      }
   }
   // What the port takes from the configuration that governs it, if there is one.
   void govern(const IntfId& port) {
      auto found = expected_.find(port);
      auto config = switchports_.find(governing(port));
      if (found == expected_.end()) return;
      if (config != switchports_.end()) {
         found->second.vlan =
             config->second.mode == Bridging::switchportRouted ? 0 : config->second.vlan;
      }
      decide(port);
   }
   void decide(const IntfId& port) {
      auto found = expected_.find(port);
      auto config = switchports_.find(governing(port));
      if (found == expected_.end()) return;
      found->second.mayTransmit =
          config == switchports_.end() || config->second.mode < 3 || config->second.mode > 5;
   }
   void aggregate(const IntfId& port) {
      IntfId group = groupOf(port);
      expected_[port].aggregation = group.empty() ? 1 : 3;
      expected_[port].groupNumber = numberOf(group);
   }

   std::mt19937 random_;
   InputFixture input_;
   std::map<IntfId, Switchport> switchports_;
   std::map<IntfId, Told> expected_;  // of the ports that there are
   bool inOneReaction_ = false;
   IntfId replaced_;  // the group that is being replaced, and has no members for a moment
   std::string deed_;
};

}  // namespace

TEST(WorldGroup, PortSpeaksForWhoGovernsIt) {
   liveSeeds(500, 100, [](unsigned seed, int steps) {
      GroupWorld world(seed);
      for (int i = 0; i < steps; ++i) {
         SCOPED_TRACE(i);
         ASSERT_NO_FATAL_FAILURE(world.step());
      }
   });
}
