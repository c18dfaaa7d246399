#include "host/Feeders/AddressFeeder.h"

#include <vector>

#include "Rex/Dispatcher.h"
#include "Rex/Log.h"
#include "host/Feeders/FedEntity.h"
#include "model/IntfRank.h"

namespace Host {
namespace {

const Rex::LogHandle notRanked(
    "HOST_INTERFACE_NOT_RANKED", 4,
    "The addresses of %s (device %s) are not told to neighbours: its number is out of range (%s)",
    "Management addresses are told in the order of their interfaces, which counts up to 128 slots, "
    "128 ports to a slot (10 of management), and loopbacks to 2100.",
    "Give the device a name with a lower number, or a port one with --port.", 0.0, 1.0, 0);

constexpr const char* defaultVrf = "default";

// What goes goes first. But an address that stays as the active one is told so while it still
// stands among the secondaries, so that it is known as the interface's own.
void removeSecondaries(Ip::IpIntfStatus& row, const Ip4Selection& now) {
   for (auto [addr, counts] : row.secondaryWithMask()) {
      if (!now.secondaries.contains(addr) && addr != now.active) row.secondaryWithMaskDel(addr);
   }
}

}  // namespace

AddressFeeder::AddressFeeder(Statestore::EntityManager& entityManager, Network& network,
                             Intfs& intfs)
    : network_(network),
      intfs_(intfs),
      ip_(fedEntity<Ip::Status>(entityManager, ipPath)),
      ip6_(fedEntity<Ip6::Status>(entityManager, ip6Path)) {
   sweep();
   std::set<int32_t> all;
   for (const auto& [ifIndex, intfId] : intfs.all()) all.insert(ifIndex);
   handleAddresses(all);
   intfs.listenerIs([this](int32_t ifIndex, const IntfId&) { handleAddresses({ifIndex}); },
                    [this](int32_t, const IntfId& intfId) { handleIntfGoes(intfId); });
   network.links.listenerIs(
       [this](const Link* before, const Link* after) { handleLink(before, after); });
   network.addresses.listenerIs(
       [this](const std::set<int32_t>& ifIndices) { handleAddresses(ifIndices); });
}

void withdrawAddresses(Ip::Status& ip, Ip6::Status& ip6, const Wirekit::IntfId& intfId) {
   if (auto row = ip.ipIntfStatus(intfId)) {
      Rex::Dispatcher::run([&] {
         removeSecondaries(*row, {});
         row->activeAddrWithMaskIs({});
      });
      ip.ipIntfStatusDel(intfId);
   }
   ip6.ipIntfStatusDel(intfId);
}

std::set<std::string> AddressFeeder::fedPaths() {
   return {ipPath, ip6Path};
}

// Another supervisor may have had interfaces that this one has not.
void AddressFeeder::sweep() {
   std::set<IntfId> ours;
   for (const auto& [ifIndex, intfId] : intfs_.all()) ours.insert(intfId);
   for (auto [intfId, row] : ip_->ipIntfStatus()) {
      if (!ours.contains(intfId)) handleIntfGoes(intfId);
   }
   for (auto [intfId, row] : ip6_->ipIntfStatus()) {
      if (!ours.contains(intfId)) ip6_->ipIntfStatusDel(intfId);
   }
}

// In one reaction, so that no frame lacks an address that moves from one interface to another.
// Order matters within it too: whoever has an address gives it up before another one has it, for
// an interface's own secondary goes before anybody is asked who else would have the address; and
// the machine of a new row looks at once at all that is in it.
void AddressFeeder::handleAddresses(const std::set<int32_t>& ifIndices) {
   std::vector<Ip4Wish> wishes;
   Rex::Dispatcher::run([&] {
      for (int32_t ifIndex : ifIndices) {
         writeIp6(ifIndex);
         if (auto wish = ip4Wish(ifIndex)) wishes.push_back(*wish);
      }
      auto eachRow = [&](auto write) {
         for (const Ip4Wish& wish : wishes) {
            if (auto row = ip_->ipIntfStatus(wish.intfId)) write(*row, wish.addresses);
         }
      };
      eachRow(removeSecondaries);
      eachRow([](auto& row, const auto& now) { row.activeAddrWithMaskIs(now.active); });
      for (const Ip4Wish& wish : wishes) makeRow(wish);
      eachRow([](auto& row, const auto& now) {
         for (const auto& addr : now.secondaries) row.secondaryWithMaskIs(addr, true);
      });
   });
   Rex::Dispatcher::run([&] {
      for (int32_t ifIndex : ifIndices) forgetPromoted(ifIndex);
   });
}

void AddressFeeder::handleLink(const Link* before, const Link* after) {
   if (!before || !after) return;
   if (before->master != after->master) syncVrf(after->ifIndex);
   if (after->kind == "vrf" && before->name != after->name) {
      for (int32_t member : network_.links.membersOf(after->ifIndex)) syncVrf(member);
   }
}

void AddressFeeder::handleIntfGoes(const IntfId& intfId) {
   warned_.erase(intfId);
   withdrawAddresses(*ip_, *ip6_, intfId);
}

// An interface has its rows from its first address on.
std::optional<AddressFeeder::Ip4Wish> AddressFeeder::ip4Wish(int32_t ifIndex) {
   const IntfId* intfId = intfs_.at(ifIndex);
   if (!intfId) return std::nullopt;
   const auto& addresses = network_.addresses.at(ifIndex).ip4;
   if (addresses.empty() && !ip_->ipIntfStatusHas(*intfId)) return std::nullopt;
   if (!ranked(ifIndex, *intfId)) return std::nullopt;
   return Ip4Wish{ifIndex, *intfId, selected(addresses)};
}

void AddressFeeder::makeRow(const Ip4Wish& wish) {
   if (ip_->ipIntfStatusHas(wish.intfId)) return;
   auto row = ip_->ipIntfStatusIs(wish.intfId);
   row->l3StatusIs(Rex::make<L3::Intf::Status>());
   row->l3Status()->vrfIs(vrfOf(wish.ifIndex));
   row->activeAddrWithMaskIs(wish.addresses.active);
}

void AddressFeeder::writeIp6(int32_t ifIndex) {
   const IntfId* intfId = intfs_.at(ifIndex);
   const auto& addrs = network_.addresses.at(ifIndex).ip6;
   if (!intfId || (addrs.empty() && !ip6_->ipIntfStatusHas(*intfId))) return;
   auto row = ip6_->ipIntfStatusIs(*intfId);
   for (auto [addr, info] : row->addr()) {
      if (!addrs.contains(addr)) row->addrDel(addr);
   }
   for (const auto& addr : addrs) row->addrIs({addr});
}

// What has become the active address stands among the secondaries no longer.
void AddressFeeder::forgetPromoted(int32_t ifIndex) {
   const IntfId* intfId = intfs_.at(ifIndex);
   auto row = intfId ? ip_->ipIntfStatus(*intfId) : nullptr;
   if (row) row->secondaryWithMaskDel(row->activeAddrWithMask());
}

void AddressFeeder::syncVrf(int32_t ifIndex) {
   const IntfId* intfId = intfs_.at(ifIndex);
   auto row = intfId ? ip_->ipIntfStatus(*intfId) : nullptr;
   if (row) row->l3Status()->vrfIs(vrfOf(ifIndex));
}

bool AddressFeeder::ranked(int32_t ifIndex, const IntfId& intfId) {
   const char* fault = Lldp::intfRank(intfId).fault;
   if (fault && warned_.insert(intfId).second) {
      const Link* link = network_.links.at(ifIndex);
      Rex::log(notRanked, intfId, Rex::String(link ? link->name : ""), Rex::String(fault));
   }
   return !fault;
}

L3::VrfName AddressFeeder::vrfOf(int32_t ifIndex) const {
   const Link* master = network_.links.masterOf(ifIndex);
   return L3::VrfName(Rex::String(master && master->kind == "vrf" ? master->name : defaultVrf));
}

}  // namespace Host
