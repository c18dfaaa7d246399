// Everything that Linux tells the agent, behind one door: the links feeder (ports and the other
// interfaces), the addresses feeder, the bridging feeder (the switch's own address, the longest
// frame, switchports and groups) and the host feeder (name and description of the system). What
// each of them writes stands in docs/feeders.md.
#pragma once

#include <map>
#include <optional>
#include <set>
#include <string>

#include "Rex/Loop.h"
#include "Statestore/EntityManager.h"
#include "host/Feeders/AddressFeeder.h"
#include "host/Feeders/BridgingFeeder.h"
#include "host/Feeders/GroupFeeder.h"
#include "host/Feeders/HostFeeder.h"
#include "host/Feeders/IntfTables.h"
#include "host/Feeders/Intfs.h"
#include "host/Feeders/LinksFeeder.h"
#include "host/Feeders/LinuxHost.h"
#include "host/Feeders/LinuxNetwork.h"
#include "host/Feeders/Network.h"
#include "host/Feeders/ServedDevices.h"
#include "host/Feeders/SwitchportFeeder.h"
#include "host/Feeders/VirtualIntfFeeder.h"
#include "host/PortNames.h"

namespace Host {

class Feeders {
 public:
   struct Setup {
      Rex::Ptr<Statestore::EntityManager> entityManager;
      Rex::Loop& loop;
      PortNames& names;
      std::set<std::string> enabled = all();
      std::set<std::string> devices = {};  // that are served; none: every physical one
      bool others = false;                 // every physical one beside `devices`
      bool chassis = false;                // there is another supervisor
   };

   // The feeders' names: addresses, bridging, host, links.
   static std::set<std::string> all();

   explicit Feeders(Setup setup);

   // Fills the store before it returns, and follows Linux through the loop from then on. The
   // present context has to be that of the agent. Throws StartError, whose words name the device,
   // when one of `devices` is not there or does not carry Ethernet frames.
   //
   // A supervisor that is not active feeds its own interfaces and its own name alone. What both
   // share (bridging, addresses, the system's description) is the active one's to write.
   void start(bool active = true);
   // The supervisor has become active. What the one before it fed and this one does not see goes.
   void activeIs();

   // The store's paths that the enabled feeders write, and nobody else.
   std::set<std::string> fedPaths() const { return fedPaths(setup_.enabled, setup_.chassis); }
   static std::set<std::string> fedPaths(const std::set<std::string>& enabled, bool chassis);
   // The ports, by name, each with its device.
   std::map<Wirekit::IntfId, std::string> ports() const;

 private:
   bool feeds(const char* feeder) const { return setup_.enabled.contains(feeder); }
   void startBridging();
   void guardNumbers();
   void startIntfs();
   void checkDevices() const;

   const Setup setup_;
   const ServedDevices devices_;
   Network network_;
   std::optional<LinuxNetwork> linuxNetwork_;
   std::optional<IntfTables> tables_;
   std::optional<Intfs> intfs_;
   std::optional<BridgingFeeder> bridgingFeeder_;
   std::optional<LinksFeeder> linksFeeder_;
   std::optional<VirtualIntfFeeder> virtualIntfFeeder_;
   std::optional<SwitchportFeeder> switchportFeeder_;
   std::optional<GroupFeeder> groupFeeder_;
   std::optional<AddressFeeder> addressFeeder_;
   std::optional<HostFeeder> hostFeeder_;
   std::optional<LinuxHost> linuxHost_;
   bool active_ = false;
};

}  // namespace Host
