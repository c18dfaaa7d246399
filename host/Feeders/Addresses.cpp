#include "host/Feeders/Addresses.h"

#include <linux/rtnetlink.h>

#include <algorithm>
#include <utility>

namespace Host {
namespace {

constexpr uint8_t loopbackNet = 127;

bool isTold(const Ip4Address& address) {
   const auto& addr = address.addr.addr();
   return address.scope < RT_SCOPE_HOST && !addr.isZero() && addr.octets()[0] != loopbackNet &&
          address.addr.maskLength() != 0;
}

// The kernel takes one address several times, with different peers.
auto isSameAs(const Ip4Address& address) {
   return [address](const Ip4Address& other) {
      return other.addr == address.addr && other.peer == address.peer;
   };
}

}  // namespace

// The kernel puts a secondary address that is promoted behind the primary ones.
void put(DeviceAddresses& addresses, const Ip4Address& address) {
   auto at = std::ranges::find_if(addresses.ip4, isSameAs(address));
   if (at != addresses.ip4.end() && at->secondary && !address.secondary) {
      addresses.ip4.erase(at);
      at = addresses.ip4.end();
   }
   if (at == addresses.ip4.end()) {
      addresses.ip4.push_back(address);
   } else {
      *at = address;
   }
}

Ip4Selection selected(const std::vector<Ip4Address>& ip4) {
   std::vector<Ip4Address> told;
   std::ranges::copy_if(ip4, std::back_inserter(told), isTold);
   std::ranges::stable_sort(told, {}, [](const Ip4Address& address) {
      return std::pair(address.secondary, address.scope);
   });
   Ip4Selection selection;
   std::set<Wirekit::IpAddr> seen;
   for (const Ip4Address& address : told) {
      bool first = seen.empty();
      if (!seen.insert(address.addr.addr()).second) continue;
      if (first) {
         selection.active = address.addr;
      } else {
         selection.secondaries.insert(address.addr);
      }
   }
   return selection;
}

void Addresses::ip4Is(int32_t ifIndex, const Ip4Address& address) {
   put(all_[ifIndex], address);
   changed_.insert(ifIndex);
}

void Addresses::ip4Del(int32_t ifIndex, const Ip4Address& address) {
   auto at = all_.find(ifIndex);
   if (at == all_.end()) return;
   std::erase_if(at->second.ip4, isSameAs(address));
   if (at->second.empty()) all_.erase(at);
   changed_.insert(ifIndex);
}

void Addresses::ip6Is(int32_t ifIndex, const Wirekit::Ip6AddrWithMask& addr) {
   all_[ifIndex].ip6.insert(addr);
   changed_.insert(ifIndex);
}

void Addresses::ip6Del(int32_t ifIndex, const Wirekit::Ip6AddrWithMask& addr) {
   auto at = all_.find(ifIndex);
   if (at == all_.end()) return;
   at->second.ip6.erase(addr);
   if (at->second.empty()) all_.erase(at);
   changed_.insert(ifIndex);
}

void Addresses::deviceDel(int32_t ifIndex) {
   if (all_.erase(ifIndex)) changed_.insert(ifIndex);
}

void Addresses::addressesAre(std::map<int32_t, DeviceAddresses> all) {
   for (const auto& [ifIndex, addresses] : all_) {
      auto stays = all.find(ifIndex);
      if (stays == all.end() || stays->second != addresses) changed_.insert(ifIndex);
   }
   for (const auto& [ifIndex, addresses] : all) {
      if (!all_.contains(ifIndex)) changed_.insert(ifIndex);
   }
   all_ = std::move(all);
}

void Addresses::tell() {
   std::set<int32_t> changed = std::exchange(changed_, {});
   if (changed.empty()) return;
   for (const Listener& listener : listeners_) listener(changed);
}

const DeviceAddresses& Addresses::at(int32_t ifIndex) const {
   static const DeviceAddresses none;
   auto at = all_.find(ifIndex);
   return at == all_.end() ? none : at->second;
}

}  // namespace Host
