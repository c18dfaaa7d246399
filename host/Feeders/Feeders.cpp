#include "host/Feeders/Feeders.h"

#include "Rex/Printable.h"
#include "host/Feeders/FedEntity.h"
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

void Feeders::start(bool active) {
   if (feeds(bridging) || feeds(links)) {
      linuxNetwork_.emplace(setup_.loop, network_);
      checkDevices();
   }
   // A new port finds the switch's address and the longest frame in place.
   if (active) startBridging();
   if (feeds(links)) startIntfs();
   if (feeds(host)) {
      hostFeeder_.emplace(setup_.entityManager);
      linuxHost_.emplace(setup_.loop, *hostFeeder_);
   }
   if (active) activeIs();
}

void Feeders::activeIs() {
   if (active_) return;
   active_ = true;
   startBridging();
   if (intfs_) {
      auto& manager = *setup_.entityManager;
      if (feeds(bridging)) switchportFeeder_.emplace(manager, network_, *intfs_);
      if (feeds(addresses)) addressFeeder_.emplace(manager, network_, *intfs_);
   }
   if (intfs_ && !feeds(addresses)) guardNumbers();
   if (hostFeeder_) hostFeeder_->activeIs();
}

// Somebody else tells the addresses. An interface's number must not go before they do.
void Feeders::guardNumbers() {
   auto ip = fedEntity<Ip::Status>(*setup_.entityManager, AddressFeeder::ipPath);
   auto ip6 = fedEntity<Ip6::Status>(*setup_.entityManager, AddressFeeder::ip6Path);
   intfs_->listenerIs(
       [](int32_t, const Wirekit::IntfId&) {},
       [ip, ip6](int32_t, const Wirekit::IntfId& intfId) { withdrawAddresses(*ip, *ip6, intfId); });
}

void Feeders::startBridging() {
   if (!feeds(bridging) || bridgingFeeder_) return;
   bridgingFeeder_.emplace(setup_.entityManager, network_.links, devices_);
}

// What is told of an interface needs its name.
void Feeders::startIntfs() {
   auto& manager = *setup_.entityManager;
   tables_.emplace(manager, setup_.chassis ? IntfTables::Of::both : IntfTables::Of::own);
   intfs_.emplace(*tables_);
   linksFeeder_.emplace(setup_.entityManager, network_.links, devices_, *tables_, *intfs_,
                        setup_.names, deviceIdentity);
   virtualIntfFeeder_.emplace(network_, devices_, *intfs_);
   if (feeds(bridging)) groupFeeder_.emplace(*tables_, network_.links, *intfs_);
   tables_->sweep();
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

std::set<std::string> Feeders::fedPaths(const std::set<std::string>& enabled, bool chassis) {
   auto feeds = [&enabled](const char* feeder) { return enabled.contains(feeder); };
   std::set<std::string> paths;
   if (feeds(bridging)) paths.merge(BridgingFeeder::fedPaths());
   if (feeds(links)) {
      paths.merge(IntfTables::fedPaths(chassis));
      paths.merge(LinksFeeder::fedPaths());
      if (feeds(addresses)) paths.merge(AddressFeeder::fedPaths());
   }
   if (feeds(host)) paths.merge(HostFeeder::fedPaths(chassis));
   return paths;
}

std::map<Wirekit::IntfId, std::string> Feeders::ports() const {
   return linksFeeder_ ? linksFeeder_->ports() : std::map<Wirekit::IntfId, std::string>();
}

}  // namespace Host
