// A model of the management addresses: what the interfaces have, and what the switch must tell of
// it. Plain sets and maps; an IPv4 address is the last number of 10.0.0.<n>/24, 0 for none.
//
// The intent is simple, and intentBroken() states it: of an interface in the VRF that is told,
// the active address is told, by one interface if several have it, and its secondaries behind it;
// without any, the fallback. Where the switch does otherwise, as it must, the model notes a
// surprise, and says why.
#pragma once

#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <tuple>

#include "Wirekit/IntfId.h"

namespace LldpTest {

class AddressModel {
 public:
   using Name = Wirekit::IntfId;
   struct Intf {
      // What is the case.
      int position = 0;  // among the interfaces in the order of their rank
      int32_t number = 0;
      bool hasStatus = false;
      int active = 0;
      std::map<int, bool> secondaries;
      std::optional<std::string> vrf;
      std::set<int> addrs6;
      // What has been told.
      bool watched = false;
      bool starting = false;  // stands for nobody else yet
      bool published = false;
      bool givingUp = false;
      int last = 0;  // the active address that was looked at last
      std::set<int> toldSecondaries;
      std::set<int> ranked;  // the secondaries with a rank, also those that nobody remembers
   };
   std::map<Name, Intf> intfs;
   std::string vrf = "default";
   Name named;  // the interface that comes first
   Name named6;
   // How often the switch did what one would not expect.
   static inline std::map<std::string, int> surprises;
   bool surprised = false;

   // Interfaces at positions below this come before the named one: those of an unknown kind.
   static constexpr int firstRanked = 1;

   // Both after the status or the number came, or before either goes.
   void start(const Name& name) {
      Intf& intf = intfs[name];
      if (!intf.hasStatus || !intf.number || intf.watched) return;
      intf.watched = intf.starting = true;
      vrfChanged(name);
      if (intf.vrf) vrfChanged(name);  // once more, when its layer-3 side is looked at
      intf.starting = false;
   }
   void stop(const Name& name) {
      Intf& intf = intfs[name];
      if (!intf.watched) return;
      intf.watched = false;
      release(name);
      stopWaiting(intf.last, name);
      removeSecondaries(name);
      if (!ranks() && ip6_.empty() && !fallback_) {
         surprise("closed with secondaries: their ranks kept the fallback away");
      }
      intf.last = 0;
      intf.toldSecondaries.clear();
   }

   void activeChanged(const Name& name) {
      Intf& intf = intfs[name];
      if (!intf.watched || intf.givingUp) return;
      release(name);
      take(name);
      for (auto [addr, value] : intf.secondaries) {
         if (value && addr != intf.active && eligible(intf) && !intf.toldSecondaries.count(addr)) {
            surprise("an active address brings no secondaries along");
         }
      }
      lookAtLeftOver(intf);
   }
   void vrfChanged(const Name& name) {
      Intf& intf = intfs[name];
      if (!intf.watched) return;
      release(name);
      take(name);
      for (auto [addr, value] : intf.secondaries) {
         if (!value && eligible(intf)) surprise("a VRF brings secondaries that do not count");
         addSecondary(name, addr);
      }
      lookAtLeftOver(intf);
   }
   void secondaryChanged(const Name& name, int addr) {
      Intf& intf = intfs[name];
      if (!intf.watched) return;
      if (auto found = intf.secondaries.find(addr);
          found != intf.secondaries.end() && found->second) {
         addSecondary(name, addr);
      } else if (addr != intf.active) {
         removeSecondary(name, addr);
      } else if (intf.toldSecondaries.count(addr)) {
         surprise("a secondary that is active is spared for good");
      }
   }
   void bridgeChanged() {
      fallback_ = ranks() == 0;
      if (fallback_ && !ip6_.empty()) surprise("a new bridge tells its address beside IPv6");
   }
   void ip6Changed() {
      auto found = intfs.find(named6);
      int lowest =
          found == intfs.end() || found->second.addrs6.empty() ? 0 : *found->second.addrs6.begin();
      if (lowest) {
         ip6_ = std::to_string(lowest) + "@" + std::to_string(found->second.number);
         fallback_ = false;
      } else if (!ip6_.empty()) {
         ip6_.clear();
         maybeFallback();
      }
   }

   // As AddressFixture::told().
   std::string told() const {
      std::string all = fallback_ ? "bridge@0" : "";
      for (auto [rank, addr] : walk()) {
         auto row = rows.find(addr);
         all += (all.empty() ? "" : " ") + ("10.0.0." + std::to_string(addr)) + "@" +
                (row == rows.end() ? "-" : std::to_string(row->second));
      }
      return all;
   }
   const std::string& told6() const { return ip6_; }
   std::map<int, int32_t> rows;  // the number of the interface, by address

   // The first thing that is not as one would expect; empty if all is.
   std::string intentBroken() const {
      std::map<int, int> holders;
      for (const auto& [name, intf] : intfs) {
         bool counts = intf.watched && eligible(intf);
         if (counts) holders[intf.active] += intf.published && intf.last == intf.active;
         if (intf.published && !counts) return "told without being eligible";
         std::set<int> secondaries;
         for (auto [addr, value] : intf.secondaries) {
            if (counts && value && addr != intf.active) secondaries.insert(addr);
         }
         if (secondaries != intf.ranked) return "other secondaries";
      }
      for (auto [addr, count] : holders) {
         if (count != 1) return "told by another number of interfaces than one";
      }
      for (auto [rank, addr] : walk()) {
         if (!rows.count(addr)) return "a rank without a row";
      }
      if (fallback_ != (ranks() == 0 && ip6_.empty())) return "fallback";
      return "";
   }

 private:
   using Rank = std::tuple<int, int, int>;

   bool eligible(const Intf& intf) const { return intf.active && intf.vrf.value_or("") == vrf; }
   void surprise(const char* what) {
      ++surprises[what];
      surprised = true;
   }
   std::map<Rank, int> walk() const {
      std::map<Rank, int> all;
      for (const auto& [name, intf] : intfs) {
         // Positions are doubled, so that the named interface's fits in.
         int position = name == named ? 2 * firstRanked - 1 : 2 * intf.position;
         if (intf.published) all[{0, position, 0}] = intf.last;
         for (int addr : intf.ranked) all[{1, intf.position, addr}] = addr;
      }
      return all;
   }
   size_t ranks() const { return walk().size(); }
   void maybeFallback() {
      if (ranks() == 0 && ip6_.empty()) fallback_ = true;
   }

   void take(const Name& name) {
      Intf& intf = intfs[name];
      if (!eligible(intf)) return;
      intf.last = intf.active;
      bool held = rows.count(intf.active);
      auto own = intf.secondaries.find(intf.active);
      bool counts =
          own != intf.secondaries.end() ? own->second : intf.toldSecondaries.count(intf.active) > 0;
      if (held && counts) {
         if (!intf.toldSecondaries.count(intf.active)) surpriseShared();
         removeSecondary(name, intf.active);
      } else if (held) {
         bool byActive = false;
         for (const auto& [other, holder] : intfs) {
            byActive |= holder.published && holder.last == intf.active;
         }
         if (!byActive) surpriseShared();
         auto& waiters = waiting_[intf.active];
         if (!waiters) waiters = std::make_shared<std::set<Name>>();
         waiters->insert(name);
         return;
      }
      intf.published = true;
      fallback_ = false;
      rows[intf.active] = intf.number;
      stopWaiting(intf.active, name);
   }
   // Offers what it gives up to those who wait. One who waits no longer, since it has another
   // address by now, looks at that one anew, and may lose it to others. Nobody is asked who is
   // giving up already: two that wait for one another would ask without end.
   void release(const Name& name) {
      Intf& intf = intfs[name];
      if (!intf.published) return;
      intf.published = false;
      rows.erase(intf.last);
      if (!eligible(intf)) removeSecondaries(name);
      maybeFallback();
      auto found = waiting_.find(intf.last);
      if (found == waiting_.end()) return;
      intf.givingUp = true;
      auto waiters = found->second;
      for (auto at = waiters->begin(); at != waiters->end();) {
         Name waiter = *at;
         if (intfs[waiter].watched && !intfs[waiter].starting) {
            activeChanged(waiter);
         } else {
            waiters->erase(waiter);
         }
         at = waiters->upper_bound(waiter);
      }
      intf.givingUp = false;
   }
   void stopWaiting(int addr, const Name& name) {
      auto found = waiting_.find(addr);
      if (found == waiting_.end()) return;
      found->second->erase(name);
      if (found->second->empty()) waiting_.erase(found);
   }

   // A secondary asks nobody: it takes the row of whoever has the address, and leaves none.
   void surpriseShared() { surprise("a secondary shares its row with others of the address"); }
   void addSecondary(const Name& name, int addr) {
      Intf& intf = intfs[name];
      if (!eligible(intf)) return;
      if (addr == intf.active) {
         surprise("an active address is told as a secondary besides");
      } else if (rows.count(addr) && !intf.toldSecondaries.count(addr)) {
         surpriseShared();
      }
      rows[addr] = intf.number;
      intf.toldSecondaries.insert(addr);
      intf.ranked.insert(addr);
   }
   void removeSecondary(const Name& name, int addr) {
      Intf& intf = intfs[name];
      if (intf.toldSecondaries.erase(addr)) {
         intf.ranked.erase(addr);
         if (addr != intf.active) rows.erase(addr);
      } else if (fallback_) {
         fallback_ = false;
         surprise("a secondary that was never told takes the fallback's rank along");
      }
   }
   void removeSecondaries(const Name& name) {
      for (auto [addr, value] : intfs[name].secondaries) removeSecondary(name, addr);
   }
   void lookAtLeftOver(const Intf& intf) {
      if (!eligible(intf) && !intf.ranked.empty()) {
         surprise("one that waits takes no secondaries along when it leaves the VRF");
      }
   }

   std::map<int, std::shared_ptr<std::set<Name>>> waiting_;
   bool fallback_ = true;
   std::string ip6_;
};

}  // namespace LldpTest
