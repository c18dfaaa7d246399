#include "host/Feeders/Feeders.h"

#include "Rex/Printable.h"
#include "host/StartError.h"

namespace Host {
namespace {

constexpr const char* addresses = "addresses";
constexpr const char* bridging = "bridging";
constexpr const char* host = "host";
constexpr const char* links = "links";

}  // namespace

std::set<std::string> Feeders::all() {
   return {addresses, bridging, host, links};
}

Feeders::Feeders(Setup setup) : setup_(std::move(setup)), devices_(setup_.devices, setup_.others) {}

void Feeders::start() {
   if (feeds(bridging) || feeds(links)) {
      linuxNetwork_.emplace(setup_.loop, network_);
      checkDevices();
   }
   // A new port finds the switch's address and the longest frame in place.
   if (feeds(bridging)) bridgingFeeder_.emplace(setup_.entityManager, network_.links, devices_);
   if (feeds(links)) startIntfs();
   if (feeds(host)) {
      hostFeeder_.emplace(setup_.entityManager);
      linuxHost_.emplace(setup_.loop, *hostFeeder_);
   }
}

// What is told of an interface needs its name.
void Feeders::startIntfs() {
   auto& manager = *setup_.entityManager;
   intfs_.emplace(manager);
   linksFeeder_.emplace(setup_.entityManager, network_.links, devices_, *intfs_, setup_.names,
                        deviceIdentity);
   virtualIntfFeeder_.emplace(network_, devices_, *intfs_);
   if (feeds(bridging)) {
      switchportFeeder_.emplace(manager, network_, *intfs_);
      groupFeeder_.emplace(manager, network_.links, *intfs_);
   }
   if (feeds(addresses)) addressFeeder_.emplace(manager, network_, *intfs_);
}

void Feeders::checkDevices() const {
   for (const std::string& name : devices_.names()) {
      const Link* link = network_.links.named(name);
      if (!link) throw StartError("there is no network device '" + Rex::printable(name) + "'");
      if (!link->ethernet) {
         throw StartError("the device '" + name + "' does not carry Ethernet frames");
      }
   }
}

std::set<std::string> Feeders::fedPaths() const {
   std::set<std::string> paths;
   if (feeds(bridging)) paths.merge(BridgingFeeder::fedPaths());
   if (feeds(links)) {
      paths.merge(Intfs::fedPaths());
      paths.merge(LinksFeeder::fedPaths());
      if (feeds(bridging)) paths.merge(GroupFeeder::fedPaths());
      if (feeds(addresses)) paths.merge(AddressFeeder::fedPaths());
   }
   if (feeds(host)) paths.merge(HostFeeder::fedPaths());
   return paths;
}

std::map<Wirekit::IntfId, std::string> Feeders::ports() const {
   return linksFeeder_ ? linksFeeder_->ports() : std::map<Wirekit::IntfId, std::string>();
}

}  // namespace Host
