#include "host/Feeders/Intfs.h"

#include "Statestore/Cell.h"
#include "host/Feeders/FedEntity.h"

namespace Host {
namespace {

constexpr const char* allPath = "interface/status/all";

Rex::String localPath() {
   return Cell::path("interface/status/local", 0);
}

}  // namespace

Intfs::Intfs(Statestore::EntityManager& entityManager)
    : everywhere_(fedEntity<Interface::AllIntfStatusDir>(entityManager, allPath)),
      local_(fedEntity<Interface::AllIntfStatusLocalDir>(entityManager, localPath().view())) {}

std::set<std::string> Intfs::fedPaths() {
   return {allPath, localPath().stdString()};
}

void Intfs::intfIs(const Link& link, const Wirekit::IntfId& intfId) {
   if (auto at = all_.find(link.ifIndex); at != all_.end()) {
      intfDel(link.ifIndex, Wirekit::IntfId(at->second));
   }
   all_[link.ifIndex] = intfId;
   auto status = Rex::make<Interface::IntfStatus>(intfId);
   status->ifIndexIs(link.ifIndex);
   status->deviceNameIs(link.name);
   everywhere_->intfStatusIs(status);
   local_->intfStatusIs(status);
   for (const Listener& came : came_) came(link.ifIndex, intfId);
}

void Intfs::intfDel(int32_t ifIndex, const Wirekit::IntfId& intfId) {
   auto at = all_.find(ifIndex);
   if (at == all_.end() || at->second != intfId) return;
   for (const Listener& goes : goes_) goes(ifIndex, intfId);
   all_.erase(at);
   local_->intfStatusDel(intfId);
   everywhere_->intfStatusDel(intfId);
}

void Intfs::deviceNameIs(int32_t ifIndex, const std::string& name) {
   const Wirekit::IntfId* intfId = at(ifIndex);
   if (auto status = intfId ? everywhere_->intfStatus(*intfId) : nullptr) {
      status->deviceNameIs(Rex::String(name));
   }
}

const Wirekit::IntfId* Intfs::at(int32_t ifIndex) const {
   auto at = all_.find(ifIndex);
   return at == all_.end() ? nullptr : &at->second;
}

}  // namespace Host
