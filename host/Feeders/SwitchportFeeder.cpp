#include "host/Feeders/SwitchportFeeder.h"

#include <set>

#include "Rex/Dispatcher.h"
#include "Wirekit/EthIntfId.h"
#include "Wirekit/MgmtIntfId.h"
#include "Wirekit/PortChannelIntfId.h"
#include "host/Feeders/BridgingFeeder.h"
#include "host/Feeders/FedEntity.h"

namespace Host {
namespace {

using Wirekit::IntfId;

// VLAN interfaces and loopbacks have no switchport.
bool isPortOrGroup(const IntfId& intfId) {
   return Wirekit::EthIntfId::isEthIntfId(intfId) || Wirekit::MgmtIntfId::isMgmtIntfId(intfId) ||
          Wirekit::PortChannelIntfId::isPortChannelIntfId(intfId);
}

}  // namespace

SwitchportFeeder::SwitchportFeeder(Statestore::EntityManager& entityManager, Network& network,
                                   Intfs& intfs)
    : network_(network),
      intfs_(intfs),
      config_(fedEntity<Bridging::Config>(entityManager, BridgingFeeder::configPath)) {
   sweep();
   for (const auto& [ifIndex, intfId] : intfs.all()) sync(ifIndex);
   intfs.listenerIs([this](int32_t ifIndex, const IntfId&) { sync(ifIndex); },
                    [this](int32_t, const IntfId& intfId) { withdraw(intfId); });
   network.links.listenerIs(
       [this](const Link* before, const Link* after) { handleLink(before, after); });
   network.vlans.listenerIs([this](int32_t ifIndex) { sync(ifIndex); });
}

// Another supervisor may have had interfaces that this one has not.
void SwitchportFeeder::sweep() {
   std::set<IntfId> ours;
   for (const auto& [ifIndex, intfId] : intfs_.all()) ours.insert(intfId);
   for (auto [intfId, row] : config_->switchIntfConfig()) {
      if (!ours.contains(intfId)) withdraw(intfId);
   }
}

void SwitchportFeeder::handleLink(const Link* before, const Link* after) {
   if (!after) return;
   if (before && before->master != after->master) sync(after->ifIndex);
   if (before && before->vlanAware != after->vlanAware) {
      for (int32_t member : network_.links.membersOf(after->ifIndex)) sync(member);
   }
}

void SwitchportFeeder::sync(int32_t ifIndex) {
   const IntfId* intfId = intfs_.at(ifIndex);
   if (!intfId || !isPortOrGroup(*intfId)) return;
   PortVlan vlan = vlanOf(ifIndex);
   if (!vlan.pvid) return withdraw(*intfId);
   // A row is whole when it is reported.
   Rex::Dispatcher::run([&] {
      auto row = config_->switchIntfConfigIs(*intfId);
      row->switchportModeIs(vlan.others ? Bridging::switchportTrunk : Bridging::switchportAccess);
      row->nativeVlanIs(Bridging::VlanId(vlan.pvid));
   });
}

// What a bridge that tells no VLANs apart numbers its ports with has no meaning to a neighbour.
PortVlan SwitchportFeeder::vlanOf(int32_t ifIndex) const {
   const Link* bridge = network_.links.masterOf(ifIndex);
   bool tells = bridge && bridge->kind == "bridge" && bridge->vlanAware;
   return tells ? network_.vlans.at(ifIndex) : PortVlan();
}

// The port keeps the VLAN of a row that goes, so the row says first that there is none.
void SwitchportFeeder::withdraw(const IntfId& intfId) {
   auto row = config_->switchIntfConfig(intfId);
   if (!row) return;
   row->switchportModeIs(Bridging::switchportRouted);
   config_->switchIntfConfigDel(intfId);
}

}  // namespace Host
