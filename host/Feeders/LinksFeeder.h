// Fills the ports' entities from the devices: status and configuration of physical interfaces.
#pragma once

#include <functional>
#include <map>
#include <set>
#include <string>

#include "Foreign/KernelNetInfo.h"
#include "Statestore/EntityManager.h"
#include "host/Feeders/Intfs.h"
#include "host/Feeders/Links.h"
#include "host/Feeders/ServedDevices.h"
#include "host/PortNames.h"

namespace Host {

class LinksFeeder {
 public:
   using Identity = std::function<std::string(const Link&)>;
   // Starts with the links that stand, and follows `links` as long as both live.
   LinksFeeder(const Rex::Ptr<Statestore::EntityManager>& entityManager, Links& links,
               const ServedDevices& devices, IntfTables& tables, Intfs& intfs, PortNames& names,
               Identity identity);

   // The store's path that nobody else writes, beside those of IntfTables.
   static std::set<std::string> fedPaths();

   // The ports, by name, each with its device.
   std::map<Wirekit::IntfId, std::string> ports() const { return devicesByPort_; }

 private:
   struct Port {
      Wirekit::IntfId intfId;
      std::string identity;
   };

   void handleLink(const Link* before, const Link* after);
   void addAll();
   void addOne(const Link& link);
   void addWaiting();
   void add(const Link& link, const Port& port);
   void update(const Link& before, const Link& after, const Wirekit::IntfId& intfId);
   void remove(std::map<int32_t, Port>::iterator at);
   void feedKernelView(const Link* before, const Link* after);
   std::string identityOf(const Link& link) const;

   const Links& links_;
   const ServedDevices& devices_;
   IntfTables& tables_;
   Intfs& intfs_;
   PortNames& names_;
   const Identity identity_;
   KernelNetInfo::Status::Ptr kernel_;
   std::map<int32_t, Port> ports_;  // by index
   std::map<Wirekit::IntfId, std::string> devicesByPort_;
   std::set<int32_t> waiting_;  // devices whose name another one still bears
};

}  // namespace Host
