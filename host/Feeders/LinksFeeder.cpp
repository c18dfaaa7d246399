#include "host/Feeders/LinksFeeder.h"

#include <algorithm>
#include <limits>
#include <utility>

#include "Rex/Log.h"
#include "host/Feeders/FedEntity.h"
#include "host/StartError.h"

namespace Host {
namespace {

const Rex::LogHandle portNamed("HOST_PORT_NAMED", 6, "Port %s is device %s (%s)",
                               "A device serves as a port of the switch under this name.",
                               Rex::NoActionRequired, 0.0, 1.0, 0);
const Rex::LogHandle namesNotKept(
    "HOST_PORT_NAMES_NOT_KEPT", 3, "%s",
    "The names of ports could not be written down, so that a restart may number them anew.",
    "Check that the state folder is on a file system with room that can be written to.", 60.0, 1.0,
    0);

constexpr const char* kernelPath = "kni/ns/default/status";

void fill(Interface::EthPhyIntfStatus& status, const Link& link) {
   constexpr uint32_t most = std::numeric_limits<uint16_t>::max();
   status.ethAddrIs(link.ethAddr);
   status.maxMtuIs(static_cast<uint16_t>(std::min(link.mtu, most)));
   status.linkStatusIs(linkStatus(link));
   status.forwardingModelIs(forwardingModel(link));
}

}  // namespace

LinksFeeder::LinksFeeder(const Rex::Ptr<Statestore::EntityManager>& entityManager, Links& links,
                         const ServedDevices& devices, IntfTables& tables, Intfs& intfs,
                         PortNames& names, Identity identity)
    : links_(links),
      devices_(devices),
      tables_(tables),
      intfs_(intfs),
      names_(names),
      identity_(std::move(identity)),
      kernel_(localFedEntity<KernelNetInfo::Status>(*entityManager, kernelPath)) {
   addAll();
   names_.save();
   links.listenerIs([this](const Link* before, const Link* after) { handleLink(before, after); });
}

std::set<std::string> LinksFeeder::fedPaths() {
   return {kernelPath};
}

// The first devices are named together, in the order of their indices.
void LinksFeeder::addAll() {
   std::vector<const Link*> served;
   std::vector<PortDevice> devices;
   std::set<std::string> seen;
   for (const auto& [ifIndex, link] : links_.all()) {
      feedKernelView(nullptr, &link);
      if (!devices_.serves(link)) continue;
      std::string identity = identity_(link);
      if (!seen.insert(identity).second) identity = "name:" + link.name;
      served.push_back(&link);
      devices.push_back({link.name, identity});
   }
   std::vector<Wirekit::IntfId> names = names_.namesOf(devices);
   for (size_t i = 0; i < served.size(); ++i) add(*served[i], {names[i], devices[i].identity});
}

void LinksFeeder::handleLink(const Link* before, const Link* after) {
   feedKernelView(before, after);
   auto at = before ? ports_.find(before->ifIndex) : ports_.end();
   bool renamed = before && after && before->name != after->name;
   if (at != ports_.end() && after && !renamed && devices_.serves(*after)) {
      update(*before, *after, at->second.intfId);
      return;
   }
   if (at != ports_.end()) remove(at);
   if (after && devices_.serves(*after)) addOne(*after);
   addWaiting();
}

// Two devices may claim one identity, as virtual functions with a copied address do.
std::string LinksFeeder::identityOf(const Link& link) const {
   std::string identity = identity_(link);
   for (const auto& [ifIndex, port] : ports_) {
      if (port.identity == identity) return "name:" + link.name;
   }
   return identity;
}

void LinksFeeder::addOne(const Link& link) {
   PortDevice device{link.name, identityOf(link)};
   Wirekit::IntfId name = names_.namesOf({device}).front();
   try {
      names_.save();
   } catch (const StartError& error) {
      Rex::log(namesNotKept, Rex::String(error.what()));
   }
   add(link, {name, device.identity});
}

void LinksFeeder::addWaiting() {
   for (int32_t ifIndex : std::exchange(waiting_, {})) {
      const Link* link = links_.at(ifIndex);
      if (link && !ports_.contains(ifIndex) && devices_.serves(*link)) addOne(*link);
   }
}

// The row of the interface itself comes first and goes last: whoever sees the port finds its index
// and its description. Each row is whole when its key is reported.
void LinksFeeder::add(const Link& link, const Port& port) {
   const Wirekit::IntfId& intfId = port.intfId;
   if (devicesByPort_.contains(intfId)) {
      waiting_.insert(link.ifIndex);
      return;
   }
   Rex::log(portNamed, intfId, Rex::String(link.name), Rex::String(port.identity));
   ports_[link.ifIndex] = port;
   devicesByPort_[intfId] = link.name;
   intfs_.intfIs(link, intfId);
   tables_.config().rowIs(
       intfId, [&](Interface::EthPhyIntfConfig& config) { config.descriptionIs(link.alias); });
   tables_.phy().rowIs(intfId, [&](Interface::EthPhyIntfStatus& phy) { fill(phy, link); });
}

void LinksFeeder::update(const Link& before, const Link& after, const Wirekit::IntfId& intfId) {
   if (auto phy = tables_.phy().row(intfId)) fill(*phy, after);
   auto config = tables_.config().row(intfId);
   // News of something else must not take back what the operator said in the meantime.
   if (config && before.alias != after.alias) config->descriptionIs(after.alias);
}

void LinksFeeder::remove(std::map<int32_t, Port>::iterator at) {
   auto [ifIndex, port] = *at;
   const Wirekit::IntfId& intfId = port.intfId;
   ports_.erase(at);
   devicesByPort_.erase(intfId);
   tables_.phy().rowDel(intfId);
   tables_.config().rowDel(intfId);
   intfs_.intfDel(ifIndex, intfId);
}

void LinksFeeder::feedKernelView(const Link* before, const Link* after) {
   bool gone = before && (!after || before->name != after->name);
   // The name may be another device's by now.
   if (gone && kernel_->device(before->name).ifIndex == before->ifIndex) {
      kernel_->deviceDel(before->name);
   }
   if (after) kernel_->deviceIs({after->name, after->ifIndex});
}

}  // namespace Host
