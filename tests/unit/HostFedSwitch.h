// A switch whose entities are fed from a network that a test fills by hand, down to what the
// agent's input makes of them.
#pragma once

#include <linux/if.h>

#include "host/Feeders/AddressFeeder.h"
#include "host/Feeders/BridgingFeeder.h"
#include "host/Feeders/GroupFeeder.h"
#include "host/Feeders/LinksFeeder.h"
#include "host/Feeders/SwitchportFeeder.h"
#include "host/Feeders/VirtualIntfFeeder.h"
#include "support/InputFixture.h"
#include "unit/HostFeedersFolder.h"

namespace Host {

inline Link device(int32_t ifIndex, const std::string& name, const std::string& kind = "veth") {
   Link link;
   link.ifIndex = ifIndex;
   link.name = name;
   link.kind = kind;
   link.ethAddr = Wirekit::EthAddr(2, 0, 0, 0, 0, static_cast<uint8_t>(ifIndex));
   link.mtu = 1500;
   link.ethernet = link.adminUp = link.carrier = true;
   link.operState = IF_OPER_UP;
   return link;
}

inline std::map<int32_t, Link> devices(const std::vector<Link>& links) {
   std::map<int32_t, Link> all;
   for (const Link& link : links) all[link.ifIndex] = link;
   return all;
}

template <class Addr>
Addr addr(const std::string& text) {
   Addr addr;
   EXPECT_TRUE(Addr::fromText(text, addr)) << text;
   return addr;
}

struct FedSwitch : LldpTest::InputFixture {
   explicit FedSwitch(const std::vector<Link>& links) {
      network.links.linksAre(devices(links));
      bridgingFeeder.emplace(manager, network.links, served);
      linksFeeder.emplace(manager, network.links, served, tables, intfs, names,
                          [](const Link& link) { return "name:" + link.name; });
      virtualIntfFeeder.emplace(network, served, intfs);
      switchportFeeder.emplace(*manager, network, intfs);
      groupFeeder.emplace(tables, network.links, intfs);
      addressFeeder.emplace(*manager, network, intfs);
      intfDir = at<Interface::AllIntfStatusDir>("interface/status/all");
      phyDir = at<Interface::AllEthPhyIntfStatusDir>("interface/status/eth/phy/all");
      bridging = at<Bridging::Config>("bridging/config");
      root->allIntfStatusDirIs(intfDir);
      root->bridgingConfigIs(bridging);
      root->inputSmIs(phyConfigDir, bridging, hwCapabilities, at<Ip::Status>("ip/status"),
                      at<Ip6::Status>("ip6/status"), routing, sysDescr, Rex::make<Rex::Dir>(),
                      netStatus, cliConfig, intfDir, root);
      root->activeEthIntfStatusDirSmIs(
          at<Interface::EthLagIntfStatusDir>("interface/status/eth/lag"), phyDir, hwCapabilities,
          root);
   }

   template <class T>
   Rex::Ptr<T> at(const char* path) {
      return Rex::dynamicPtr<T>(manager->getEntity(path));
   }
   void ip4(int32_t ifIndex, const char* text, bool secondary = false) {
      network.addresses.ip4Is(ifIndex, {addr<Wirekit::IpAddrWithMask>(text), secondary});
   }
   void noIp4(int32_t ifIndex, const char* text) {
      network.addresses.ip4Del(ifIndex, {addr<Wirekit::IpAddrWithMask>(text)});
   }
   void ip6(int32_t ifIndex, const char* text) {
      network.addresses.ip6Is(ifIndex, addr<Wirekit::Ip6AddrWithMask>(text));
   }
   // What neighbours are told, in that order; the bridge's address is "mac".
   std::string told() {
      std::string all = textOf(localSystem->ip6ManagementAddress().key);
      uint32_t count = 0;
      for (auto [rank, key] : localSystem->managementAddressPrio()) {
         if (count++ == config->maxTxMgmtAddrs()) break;
         EXPECT_TRUE(localSystem->managementAddressHas(key)) << "a rank without an address";
         all += (all.empty() ? "" : " ") + textOf(key);
      }
      return all;
   }
   static std::string textOf(const Lldp::ManagementAddress::Key& key) {
      const char* octets = key.manAddr.value().view().data();
      if (key.manAddrSubtype == 1)
         return Wirekit::IpAddr::fromOctets(octets).stringValue().stdString();
      if (key.manAddrSubtype == 2) {
         return Wirekit::Ip6Addr::fromOctets(octets).stringValue().stdString();
      }
      return key.manAddrSubtype ? "mac" : "";
   }
   // The interfaces of every kind, by name with their device.
   std::string intfNames() {
      std::map<Wirekit::IntfId, std::string> byName;
      for (auto [intfId, row] : intfDir->intfStatus())
         byName[intfId] = row->deviceName().stdString();
      std::string all;
      for (const auto& [intfId, name] : byName) {
         all += (all.empty() ? "" : " ") + intfId.stringValue().stdString() + "=" + name;
      }
      return all;
   }

   Rex::Ptr<Statestore::EntityManager> manager = Rex::make<Statestore::EntityManager>();
   Network network;
   ServedDevices served;
   TestFolder folder;
   PortNames names{{}, folder.path + "/ports.json"};
   IntfTables tables{*manager};
   Intfs intfs{tables};
   std::optional<BridgingFeeder> bridgingFeeder;
   std::optional<LinksFeeder> linksFeeder;
   std::optional<VirtualIntfFeeder> virtualIntfFeeder;
   std::optional<SwitchportFeeder> switchportFeeder;
   std::optional<GroupFeeder> groupFeeder;
   std::optional<AddressFeeder> addressFeeder;
};

}  // namespace Host
