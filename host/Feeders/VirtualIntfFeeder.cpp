#include "host/Feeders/VirtualIntfFeeder.h"

#include <charconv>
#include <utility>

#include "Rex/Log.h"

namespace Host {
namespace {

const Rex::LogHandle nameTaken(
    "HOST_INTERFACE_NAME_TAKEN", 4,
    "Device %s is no interface of the switch: %s is device %s already",
    "Two devices belong to one VLAN interface. The addresses of the second one are not told to "
    "neighbours as long as the first one stands.",
    "Give the addresses to the first device, or the second one another VLAN.", 60.0, 1.0, 0);

constexpr const char* loopbackKind = "Loopback";
constexpr const char* groupKind = "Port-Channel";
constexpr const char* vlanKind = "Vlan";
constexpr uint16_t plainBridgeVlan = 1;  // of a bridge that tells no VLANs apart
constexpr uint32_t mostNumber = 999999;

// bond7: 7.
std::optional<uint32_t> numberAtEnd(const std::string& name) {
   size_t begin = name.find_last_not_of("0123456789") + 1;
   uint32_t number = 0;
   auto [end, error] = std::from_chars(name.data() + begin, name.data() + name.size(), number);
   if (error != std::errc() || number > mostNumber) return std::nullopt;
   return number;
}

Wirekit::IntfId nameOf(const std::string& kind, uint32_t number) {
   return Wirekit::IntfId(kind + std::to_string(number));
}

}  // namespace

VirtualIntfFeeder::VirtualIntfFeeder(Network& network, const ServedDevices& devices, Intfs& intfs)
    : network_(network), devices_(devices), intfs_(intfs) {
   for (const auto& [ifIndex, link] : network.links.all()) sync(ifIndex);
   network.links.listenerIs([this](const Link* before, const Link* after) {
      sync(after ? after->ifIndex : before->ifIndex);
   });
   network.vlans.listenerIs([this](int32_t ifIndex) { sync(ifIndex); });
}

std::optional<VirtualIntfFeeder::Wish> VirtualIntfFeeder::wishOf(const Link& link) const {
   if (devices_.serves(link)) return std::nullopt;
   auto exact = [&](const char* kind, uint32_t number) {
      return Wish{kind, number, true, link.name};
   };
   if (link.loopback) return exact(loopbackKind, 0);
   if (link.kind == "dummy") return Wish{loopbackKind, numberAtEnd(link.name), false, link.name};
   if (link.kind == "bond" || link.kind == "team") {
      return Wish{groupKind, numberAtEnd(link.name), false, link.name};
   }
   uint16_t vlan = 0;
   if (link.kind == "vlan") vlan = link.vlanId;
   if (link.kind == "bridge") {
      vlan = link.vlanAware ? network_.vlans.at(link.ifIndex).pvid : plainBridgeVlan;
   }
   if (vlan) return exact(vlanKind, vlan);
   return std::nullopt;
}

void VirtualIntfFeeder::sync(int32_t ifIndex) {
   const Link* link = network_.links.at(ifIndex);
   std::optional<Wish> wish = link ? wishOf(*link) : std::nullopt;
   auto at = bearers_.find(ifIndex);
   bool stood = at != bearers_.end();
   if (stood && wish && wish->isSameIntf(at->second.wish)) {
      // Under another device name it is the interface that it was, and keeps its addresses.
      if (wish->device != at->second.wish.device) intfs_.deviceNameIs(ifIndex, wish->device);
      at->second.wish = *wish;
      return;
   }
   if (stood) remove(ifIndex);
   if (!wish) waiting_.erase(ifIndex);
   if (wish) add(*link, *wish);
   if (stood) addWaiting();
}

void VirtualIntfFeeder::add(const Link& link, const Wish& wish) {
   Wirekit::IntfId intfId = freeName(wish);
   if (intfId.empty()) {
      Wirekit::IntfId wanted = nameOf(wish.kind, *wish.number);
      if (waiting_.insert(link.ifIndex).second) {
         const Bearer& other = bearers_.at(byName_.at(wanted));
         Rex::log(nameTaken, Rex::String(link.name), wanted, Rex::String(other.wish.device));
      }
      return;
   }
   waiting_.erase(link.ifIndex);
   bearers_[link.ifIndex] = {wish, intfId};
   byName_[intfId] = link.ifIndex;
   intfs_.intfIs(link, intfId);
}

void VirtualIntfFeeder::remove(int32_t ifIndex) {
   auto bearer = bearers_.extract(ifIndex);
   byName_.erase(bearer.mapped().intfId);
   intfs_.intfDel(ifIndex, bearer.mapped().intfId);
}

void VirtualIntfFeeder::addWaiting() {
   for (int32_t ifIndex : std::set<int32_t>(waiting_)) {
      const Link* link = network_.links.at(ifIndex);
      if (auto wish = link ? wishOf(*link) : std::nullopt) add(*link, *wish);
   }
}

Wirekit::IntfId VirtualIntfFeeder::freeName(const Wish& wish) const {
   if (wish.number) {
      Wirekit::IntfId wanted = nameOf(wish.kind, *wish.number);
      if (!byName_.contains(wanted)) return wanted;
   }
   if (wish.exact) return {};
   for (uint32_t number = 1;; ++number) {
      Wirekit::IntfId name = nameOf(wish.kind, number);
      if (!byName_.contains(name)) return name;
   }
}

}  // namespace Host
