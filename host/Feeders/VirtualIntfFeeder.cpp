#include "host/Feeders/VirtualIntfFeeder.h"

#include <algorithm>
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
   Wirekit::IntfId given = stood ? remove(ifIndex) : Wirekit::IntfId();
   if (!wish) doneWaiting(ifIndex);
   if (wish) add(*link, *wish);
   if (stood) addWaiting(given);
}

void VirtualIntfFeeder::add(const Link& link, const Wish& wish) {
   Wirekit::IntfId intfId = freeName(wish);
   if (intfId.empty()) {
      waitFor(link, nameOf(wish.kind, *wish.number));
      return;
   }
   doneWaiting(link.ifIndex);
   bearers_[link.ifIndex] = {wish, intfId};
   byName_[intfId] = link.ifIndex;
   intfs_.intfIs(link, intfId);
}

Wirekit::IntfId VirtualIntfFeeder::remove(int32_t ifIndex) {
   Bearer bearer = bearers_.extract(ifIndex).mapped();
   byName_.erase(bearer.intfId);
   intfs_.intfDel(ifIndex, bearer.intfId);
   auto first = firstFree_.find(bearer.wish.kind);
   std::optional<uint32_t> number = numberAtEnd(bearer.intfId.stringValue().stdString());
   if (first != firstFree_.end() && number) first->second = std::clamp(*number, 1u, first->second);
   return bearer.intfId;
}

void VirtualIntfFeeder::waitFor(const Link& link, const Wirekit::IntfId& wanted) {
   auto at = waitsFor_.find(link.ifIndex);
   if (at != waitsFor_.end() && at->second == wanted) return;
   doneWaiting(link.ifIndex);
   waitsFor_[link.ifIndex] = wanted;
   waiting_[wanted].insert(link.ifIndex);
   const Bearer& other = bearers_.at(byName_.at(wanted));
   Rex::log(nameTaken, Rex::String(link.name), wanted, Rex::String(other.wish.device));
}

void VirtualIntfFeeder::doneWaiting(int32_t ifIndex) {
   auto wanted = waitsFor_.extract(ifIndex);
   if (!wanted) return;
   auto others = waiting_.find(wanted.mapped());
   others->second.erase(ifIndex);
   if (others->second.empty()) waiting_.erase(others);
}

// The first of those that want a name gets it.
void VirtualIntfFeeder::addWaiting(const Wirekit::IntfId& intfId) {
   auto at = waiting_.find(intfId);
   if (at == waiting_.end() || byName_.contains(intfId)) return;
   sync(*at->second.begin());
}

Wirekit::IntfId VirtualIntfFeeder::freeName(const Wish& wish) {
   if (wish.number) {
      Wirekit::IntfId wanted = nameOf(wish.kind, *wish.number);
      if (!byName_.contains(wanted)) return wanted;
   }
   if (wish.exact) return {};
   uint32_t& number = firstFree_.try_emplace(wish.kind, 1).first->second;
   while (byName_.contains(nameOf(wish.kind, number))) ++number;
   return nameOf(wish.kind, number);
}

}  // namespace Host
