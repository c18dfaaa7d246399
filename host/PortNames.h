// Which switch name each device bears, kept on disk so that a reboot never moves a saved
// configuration to another cable.
//
// In this order: the name that the operator gave (--port); the device's own, if it is a switch name
// already; the one that it had before; the next free Ethernet<n>. With more than 128 devices new
// names take the form Ethernet<slot>/<port>, 128 ports to a slot.
#pragma once

#include <map>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "Wirekit/IntfId.h"

namespace Host {

struct PortDevice {
   std::string name;      // of the device
   std::string identity;  // what stays the same about it across reboots
};

class PortNames {
 public:
   static constexpr size_t flatPorts = 128;  // as many names without a slot, and ports in a slot

   // `given`: the operator's names, by device. Reads `file`, if it is there. Throws StartError.
   PortNames(std::map<std::string, Wirekit::IntfId> given, const std::string& file);

   // Whether a port can bear that name: Ethernet<n>, Management<n>, or these with slot and lane,
   // and no number with leading zeros.
   static bool isPortName(std::string_view name);

   // The names of devices that are served together, in their order. Makes new ones as needed.
   std::vector<Wirekit::IntfId> namesOf(const std::vector<PortDevice>& devices);

   // Writes what has changed since the last time; the file is replaced as a whole. Throws
   // StartError.
   void save();

 private:
   void load();
   void forgetReserved(const std::string& identity);
   void take(const PortDevice& device, const Wirekit::IntfId& name);
   bool taken(const Wirekit::IntfId& name) const;
   Wirekit::IntfId nextFree(bool slots);

   const std::map<std::string, Wirekit::IntfId> given_;
   const std::string file_;
   std::map<std::string, Wirekit::IntfId> byIdentity_;
   std::map<Wirekit::IntfId, std::string> identities_;
   std::set<Wirekit::IntfId> reserved_;  // the operator's names
   size_t next_ = 0;                     // all names before are taken
   bool changed_ = false;
};

}  // namespace Host
