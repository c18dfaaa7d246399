#include "Lldp/LldpNbrClassificationSm/HeardAddrs.h"

namespace Lldp::Agent::NbrClassification {

void HeardAddrs::add(const Wirekit::EthAddr& ethAddr, const Heard& heard) {
   const Entry* found = entries_.find(ethAddr);
   if (!found) return entries_.insert(ethAddr, {heard, nullptr});
   Entry entry = *found;
   if (!entry.others) entry.others = std::make_shared<std::map<Place, Heard>>();
   bool behind = entry.last.place < heard.place;
   const Heard& other = behind ? entry.last : heard;
   entry.others->emplace(other.place, other);
   if (behind) entry.last = heard;
   entries_.insert(ethAddr, entry);
}

void HeardAddrs::remove(const Wirekit::EthAddr& ethAddr, const Place& place) {
   const Entry* found = entries_.find(ethAddr);
   if (!found) return;
   Entry entry = *found;
   if (entry.last.place != place) {
      if (entry.others) entry.others->erase(place);
   } else if (!entry.others || entry.others->empty()) {
      entries_.erase(ethAddr);
   } else {
      auto next = std::prev(entry.others->end());
      entry.last = next->second;
      entry.others->erase(next);
      entries_.insert(ethAddr, entry);
   }
}

std::vector<Heard> HeardAddrs::all(const Wirekit::EthAddr& ethAddr) const {
   std::vector<Heard> heard;
   if (const Entry* entry = entries_.find(ethAddr)) {
      if (entry->others) {
         for (const auto& [place, other] : *entry->others) heard.push_back(other);
      }
      heard.push_back(entry->last);
   }
   return heard;
}

}  // namespace Lldp::Agent::NbrClassification
