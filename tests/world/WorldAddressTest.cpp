// Random addresses: interfaces come and go with their addresses, VRFs and numbers, the operator
// names this one and that, and after every step the switch tells what the model tells.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <random>

#include "AddressModel.h"
#include "support/AddressFixture.h"
#include "support/Seeds.h"

using namespace LldpTest;
using Wirekit::IntfId;

namespace {

// In the order of their rank. The first is of an unknown kind; nobody names it (see
// InputAddress.NamedInterfaceOfAnUnknownKind for what comes of it).
constexpr std::array<const char*, 7> names = {
    "Tunnel1", "Loopback0", "Management1", "Ethernet3", "Port-Channel7", "Vlan5", "Vlan40"};
constexpr std::array<const char*, 5> vrfs = {"default", "default", "default", "red", ""};
constexpr int addrs = 6;
// Addresses of IPv6 by number, the lowest first. Those from `firstUntold` count as none.
constexpr std::array<const char*, 6> addrs6 = {
    "",          "2001:db8::1/64", "2001:db8::2/64",
    "fd00::1/8", "fe80::1/64",     "ffff:ffff:ffff:ffff:ffff:ffff:ffff:ffff/128"};
constexpr int firstUntold = 4;

Wirekit::IpAddrWithMask addrOf(int n) {
   return n ? ip4("10.0.0." + std::to_string(n) + "/24") : Wirekit::IpAddrWithMask();
}

class AddressWorld {
 public:
   explicit AddressWorld(unsigned seed) : random_(seed) {
      for (size_t i = 0; i < names.size(); ++i) model_.intfs[IntfId(names[i])].position = int(i);
      input_.startInputSm();
   }

   // One random deed. Returns how the switch then differs from the model, or the model without
   // surprises from the intent.
   std::string step() {
      act();
      if (input_.told() != model_.told()) {
         return deed_ + ": told " + input_.told() + ", expected " + model_.told();
      }
      if (told6() != model_.told6()) return deed_ + ": IPv6 " + told6();
      std::map<int, int32_t> rows;
      for (auto [key, row] : input_.localSystem->managementAddress()) {
         if (key.manAddrSubtype == 1)
            rows[uint8_t(key.manAddr.value().view()[3])] = int32_t(row.ifNumber);
      }
      if (rows != model_.rows) return deed_ + ": rows " + testing::PrintToString(rows);
      std::string broken = model_.intentBroken();
      if (!model_.surprised && !broken.empty()) return deed_ + ": not intended: " + broken;
      intended_ += broken.empty();
      return "";
   }
   int intended() const { return intended_; }

 private:
   size_t pick(size_t count) { return random_() % count; }
   bool flip() { return random_() % 2; }
   int anyAddr() { return 1 + int(pick(addrs)); }

   // As the model shows it: the number of the address for itself.
   std::string told6() {
      std::string told = input_.told6();
      for (size_t i = 1; i < addrs6.size(); ++i) {
         std::string addr = addrs6[i];
         addr.resize(addr.find('/'));
         if (told.starts_with(addr + "@")) return std::to_string(i) + told.substr(addr.size());
      }
      return told;
   }

   void act() {
      name_ = IntfId(names[pick(names.size())]);
      deed_ = name_.stringValue().stdString() + " ";
      AddressModel::Intf& intf = model_.intfs[name_];
      switch (pick(16)) {
         case 0:
            // One that has it seldom loses it.
            return intf.number && pick(4) ? actOnActive(intf) : actOnNumber(intf);
         case 1:
            return intf.hasStatus && pick(4) ? actOnActive(intf) : actOnStatus(intf);
         case 2:
         case 3:
         case 4:
         case 5:
            return actOnActive(intf);
         case 6:
         case 7:
         case 8:
            return actOnSecondary(intf);
         case 9:
            return actOnPromotion(intf);
         case 10:
            return actOnIntfVrf(intf);
         case 11:
            return pick(3) ? actOnOption() : actOnVrf();
         case 12:
            deed_ = "bridge";
            input_.bridging->bridgeMacAddrIs({2, 0, 0, 0, 1, static_cast<uint8_t>(++turns_)});
            return model_.bridgeChanged();
         case 13:
            return actOnName6(pick(3) ? name_ : IntfId());
         default:
            return actOnAddr6(intf);
      }
   }
   void actOnNumber(AddressModel::Intf& intf) {
      deed_ += intf.number ? "loses its number" : "gets a number";
      if (!intf.number) {
         intf.number = ++turns_;
         input_.number(names[size_t(intf.position)], intf.number);
         if (name_ == model_.named6) model_.ip6Changed();
         return model_.start(name_);
      }
      // Its addresses go first: an IPv6 address that is told needs its number.
      for (int addr : std::set<int>(intf.addrs6)) addr6Is(intf, addr, false);
      model_.stop(name_);
      input_.intfDir->intfStatusDel(name_);
      intf.number = 0;
   }
   // The status comes with everything in it, goes, or is replaced within one reaction.
   void actOnStatus(AddressModel::Intf& intf) {
      bool hadOne = intf.hasStatus;
      bool hasOne = !hadOne || flip();
      deed_ += hadOne ? (hasOne ? "is replaced" : "goes") : "comes";
      model_.stop(name_);
      intf.hasStatus = hasOne;
      intf.active = 0;
      intf.secondaries.clear();
      intf.vrf.reset();
      if (hasOne) {
         if (flip()) intf.active = anyAddr();
         for (size_t n = pick(3); n > 0; --n) intf.secondaries[anyAddr()] = pick(4);
         if (pick(5)) intf.vrf = vrfs[pick(vrfs.size())];
      }
      auto l3 = intf.vrf ? input_.l3(*intf.vrf) : nullptr;
      Rex::Dispatcher::run([&] {
         if (hadOne) input_.ipStatus->ipIntfStatusDel(name_);
         if (!hasOne) return;
         auto row = input_.ipStatus->ipIntfStatusIs(name_);
         row->l3StatusIs(l3);
         row->activeAddrWithMaskIs(addrOf(intf.active));
         for (auto [addr, value] : intf.secondaries) row->secondaryWithMaskIs(addrOf(addr), value);
      });
      if (!hasOne) return;
      model_.start(name_);
      // The machine stands when the rest of the reaction is told.
      if (intf.active) model_.activeChanged(name_);
      for (auto [addr, value] : intf.secondaries) model_.secondaryChanged(name_, addr);
   }
   void actOnActive(AddressModel::Intf& intf) {
      auto row = input_.ipStatus->ipIntfStatus(name_);
      int before = intf.active;
      if (!row) return;
      intf.active = pick(4) ? anyAddr() : 0;
      deed_ += "has " + std::to_string(intf.active) + " after " + std::to_string(before);
      row->activeAddrWithMaskIs(addrOf(intf.active));
      if (intf.active != before) model_.activeChanged(name_);
   }
   void actOnSecondary(AddressModel::Intf& intf) {
      auto row = input_.ipStatus->ipIntfStatus(name_);
      int addr = anyAddr();
      if (!row) return;
      deed_ += "secondary " + std::to_string(addr);
      auto found = intf.secondaries.find(addr);
      if (found != intf.secondaries.end() && pick(4)) {
         intf.secondaries.erase(found);
         row->secondaryWithMaskDel(addrOf(addr));
      } else {
         bool value = pick(6);
         if (found != intf.secondaries.end() && found->second == value) return;
         intf.secondaries[addr] = value;
         row->secondaryWithMaskIs(addrOf(addr), value);
      }
      model_.secondaryChanged(name_, addr);
   }
   // The kernel removed the active address: a secondary takes its place, in one reaction.
   void actOnPromotion(AddressModel::Intf& intf) {
      auto row = input_.ipStatus->ipIntfStatus(name_);
      if (!row || intf.secondaries.empty()) return;
      int addr = intf.secondaries.begin()->first;
      if (addr == intf.active) return;
      bool activeFirst = flip();
      deed_ += activeFirst ? "promotes, then removes" : "removes, then promotes";
      intf.secondaries.erase(addr);
      intf.active = addr;
      Rex::Dispatcher::run([&] {
         if (activeFirst) row->activeAddrWithMaskIs(addrOf(addr));
         row->secondaryWithMaskDel(addrOf(addr));
         row->activeAddrWithMaskIs(addrOf(addr));
      });
      if (activeFirst) model_.activeChanged(name_);
      model_.secondaryChanged(name_, addr);
      if (!activeFirst) model_.activeChanged(name_);
   }
   void actOnIntfVrf(AddressModel::Intf& intf) {
      std::string vrf = vrfs[pick(vrfs.size())];
      if (!intf.vrf || *intf.vrf == vrf) return;
      deed_ += "moves to VRF " + vrf;
      intf.vrf = vrf;
      input_.ipStatus->ipIntfStatus(name_)->l3Status()->vrfIs(vrfName(vrf));
      model_.vrfChanged(name_);
   }
   void actOnVrf() {
      std::string vrf = vrfs[pick(vrfs.size())];
      if (vrf == model_.vrf) return;
      deed_ = "VRF " + vrf;
      // The machines stand in no order that means anything: it is taken as it is.
      std::vector<IntfId> order;
      for (auto [name, sm] : input_.root->inputSm()->ipIntfStatusSm()) order.push_back(name);
      model_.vrf = vrf;
      input_.cliConfig->mgmtAddrVrfIs(vrfName(vrf));
      for (const IntfId& name : order) model_.vrfChanged(name);
   }
   void actOnOption() {
      if (pick(3) == 0 || name_ == IntfId("Tunnel1")) {
         deed_ = "nobody is named";
         model_.named = IntfId();
         return input_.option(flip() ? Lldp::MgmtAddrTxMode::mgmtAddrTxModeAll
                                     : Lldp::MgmtAddrTxMode::mgmtAddrTxModeBest);
      }
      deed_ += "is named";
      model_.named = name_;
      input_.option(Lldp::MgmtAddrTxMode::mgmtAddrTxModeIntfName, name_.stringValue());
   }
   void actOnName6(const IntfId& name) {
      deed_ = "name for IPv6";
      if (name == model_.named6) return;
      model_.named6 = name;
      input_.cliConfig->ip6MgmtAddrIntfNameIs(name.stringValue());
      model_.ip6Changed();
   }
   void actOnAddr6(AddressModel::Intf& intf) {
      int addr = 1 + int(pick(addrs6.size() - 1));
      deed_ += std::string("IPv6 ") + addrs6[size_t(addr)];
      if (intf.number) addr6Is(intf, addr, flip());
   }
   void addr6Is(AddressModel::Intf& intf, int addr, bool present) {
      auto row = input_.ip6Status->ipIntfStatusIs(name_);
      auto key = ip6(addrs6[size_t(addr)]);
      if (row->addrHas(key) == present) return;
      if (present) row->addrIs({key});
      if (!present) row->addrDel(key);
      if (present && addr < firstUntold) intf.addrs6.insert(addr);
      if (!present) intf.addrs6.erase(addr);
      model_.ip6Changed();
   }

   std::mt19937 random_;
   AddressFixture input_;
   AddressModel model_;
   IntfId name_;
   std::string deed_;
   int turns_ = 100;
   int intended_ = 0;
};

}  // namespace

TEST(WorldAddress, ToldAsTheModelTells) {
   int all = 0;
   int intended = 0;
   liveSeeds(1000, 100, [&](unsigned seed, int steps) {
      AddressWorld world(seed);
      for (int i = 0; i < steps; ++i) ASSERT_EQ(world.step(), "") << "step " << i;
      all += steps;
      intended += world.intended();
   });
   // Of a world that is replayed nothing is counted.
   if (HasFatalFailure() || all < 50000) return;
   // A surprise that never happens would excuse what it does not explain.
   EXPECT_EQ(AddressModel::surprises.size(), 9u);
   for (const auto& [what, times] : AddressModel::surprises) EXPECT_GT(times, 20) << what;
   EXPECT_GT(intended, all / 2);
}
