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

constexpr const char* ipPath = "ip/status";
constexpr const char* ip6Path = "ip6/status";
constexpr const char* defaultVrf = "default";

// A row is whole when its machine looks at it. Order matters within the reaction too: what goes
// goes first; the new active address is told while it still stands among the secondaries, so that
// it is known as the interface's own; and what was active may come back as a secondary.
void writeIp4(Ip::IpIntfStatus& row, const Ip4Selection& now) {
   std::vector<Wirekit::IpAddrWithMask> gone;
   for (auto [addr, counts] : row.secondaryWithMask()) {
      if (!now.secondaries.contains(addr) && addr != now.active) gone.push_back(addr);
   }
   for (const auto& addr : gone) row.secondaryWithMaskDel(addr);
   row.activeAddrWithMaskIs(now.active);
   for (const auto& addr : now.secondaries) row.secondaryWithMaskIs(addr, true);
}

}  // namespace

AddressFeeder::AddressFeeder(Statestore::EntityManager& entityManager, Network& network,
                             Intfs& intfs)
    : network_(network),
      intfs_(intfs),
      ip_(fedEntity<Ip::Status>(entityManager, ipPath)),
      ip6_(fedEntity<Ip6::Status>(entityManager, ip6Path)) {
   sweep();
   for (const auto& [ifIndex, intfId] : intfs.all()) write(ifIndex);
   intfs.listenerIs([this](int32_t ifIndex, const IntfId&) { handleAddresses({ifIndex}); },
                    [this](int32_t, const IntfId& intfId) { handleIntfGoes(intfId); });
   network.links.listenerIs(
       [this](const Link* before, const Link* after) { handleLink(before, after); });
   network.addresses.listenerIs(
       [this](const std::set<int32_t>& ifIndices) { handleAddresses(ifIndices); });
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

void AddressFeeder::handleAddresses(const std::set<int32_t>& ifIndices) {
   Rex::Dispatcher::run([&] {
      for (int32_t ifIndex : ifIndices) write(ifIndex);
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
   if (auto row = ip_->ipIntfStatus(intfId)) {
      Rex::Dispatcher::run([&] { writeIp4(*row, {}); });
      ip_->ipIntfStatusDel(intfId);
   }
   ip6_->ipIntfStatusDel(intfId);
}

// An interface has its rows from its first address on.
void AddressFeeder::write(int32_t ifIndex) {
   const IntfId* intfId = intfs_.at(ifIndex);
   if (!intfId) return;
   const DeviceAddresses& addresses = network_.addresses.at(ifIndex);
   auto row = ip_->ipIntfStatus(*intfId);
   bool ip6Row = ip6_->ipIntfStatusHas(*intfId);
   if (addresses.empty() && !row && !ip6Row) return;
   if (ip6Row || !addresses.ip6.empty()) writeIp6(*intfId, addresses.ip6);
   if ((!row && addresses.ip4.empty()) || !ranked(ifIndex, *intfId)) return;
   if (!row) {
      row = ip_->ipIntfStatusIs(*intfId);
      row->l3StatusIs(Rex::make<L3::Intf::Status>());
      row->l3Status()->vrfIs(vrfOf(ifIndex));
   }
   writeIp4(*row, selected(addresses.ip4));
}

void AddressFeeder::writeIp6(const IntfId& intfId,
                             const std::set<Wirekit::Ip6AddrWithMask>& addrs) {
   auto row = ip6_->ipIntfStatusIs(intfId);
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
