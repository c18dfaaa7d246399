#include "host/Feeders/Intfs.h"

namespace Host {

void Intfs::intfIs(const Link& link, const Wirekit::IntfId& intfId) {
   if (auto at = all_.find(link.ifIndex); at != all_.end()) {
      intfDel(link.ifIndex, Wirekit::IntfId(at->second));
   }
   all_[link.ifIndex] = intfId;
   tables_.status().rowIs(intfId, [&](Interface::IntfStatus& status) {
      status.ifIndexIs(link.ifIndex);
      status.deviceNameIs(link.name);
   });
   tables_.local().intfStatusIs(tables_.status().row(intfId));
   for (const Listener& came : came_) came(link.ifIndex, intfId);
}

void Intfs::intfDel(int32_t ifIndex, const Wirekit::IntfId& intfId) {
   auto at = all_.find(ifIndex);
   if (at == all_.end() || at->second != intfId) return;
   for (const Listener& goes : goes_) goes(ifIndex, intfId);
   all_.erase(at);
   tables_.local().intfStatusDel(intfId);
   tables_.status().rowDel(intfId);
}

void Intfs::deviceNameIs(int32_t ifIndex, const std::string& name) {
   const Wirekit::IntfId* intfId = at(ifIndex);
   if (auto status = intfId ? tables_.status().row(*intfId) : nullptr) {
      status->deviceNameIs(Rex::String(name));
   }
}

const Wirekit::IntfId* Intfs::at(int32_t ifIndex) const {
   auto at = all_.find(ifIndex);
   return at == all_.end() ? nullptr : &at->second;
}

}  // namespace Host
