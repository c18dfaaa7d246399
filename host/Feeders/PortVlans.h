// The VLANs of bridge ports, and of bridges themselves, as the kernel has them.
#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <set>
#include <vector>

namespace Host {

struct PortVlan {
   uint16_t pvid = 0;    // the VLAN of untagged frames, 0 for none
   bool others = false;  // carries more VLANs than that
   bool operator==(const PortVlan&) const = default;
};

class PortVlans {
 public:
   using Listener = std::function<void(int32_t ifIndex)>;
   void listenerIs(Listener listener) { listeners_.push_back(std::move(listener)); }

   PortVlan at(int32_t ifIndex) const {
      auto at = all_.find(ifIndex);
      return at == all_.end() ? PortVlan() : at->second;
   }
   void vlanIs(int32_t ifIndex, const PortVlan& vlan) {
      if (at(ifIndex) == vlan) return;
      all_[ifIndex] = vlan;
      if (vlan == PortVlan()) all_.erase(ifIndex);
      for (const Listener& listener : listeners_) listener(ifIndex);
   }
   // All that there are; what is not among them has none.
   void vlansAre(const std::map<int32_t, PortVlan>& vlans) {
      std::set<int32_t> gone;
      for (const auto& [ifIndex, vlan] : all_) {
         if (!vlans.contains(ifIndex)) gone.insert(ifIndex);
      }
      for (int32_t ifIndex : gone) vlanIs(ifIndex, {});
      for (const auto& [ifIndex, vlan] : vlans) vlanIs(ifIndex, vlan);
   }

 private:
   std::map<int32_t, PortVlan> all_;
   std::vector<Listener> listeners_;
};

}  // namespace Host
