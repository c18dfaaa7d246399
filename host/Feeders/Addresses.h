// The IP addresses of the machine's devices as the kernel has them.
#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <set>
#include <vector>

#include "Wirekit/IpAddr.h"

namespace Host {

struct Ip4Address {
   Wirekit::IpAddrWithMask addr;
   bool secondary = false;  // in the network of a primary one that came before
   uint8_t scope = 0;       // 0 for everywhere; higher is narrower (rtnetlink(7))
   Wirekit::IpAddr peer;    // the other end of a link with two; else the address itself
   bool operator==(const Ip4Address&) const = default;
};

struct DeviceAddresses {
   std::vector<Ip4Address> ip4;  // in the order in which they came
   std::set<Wirekit::Ip6AddrWithMask> ip6;
   bool operator==(const DeviceAddresses&) const = default;
   bool empty() const { return ip4.empty() && ip6.empty(); }
};

// Of an IPv4 address with its mask; one that stands keeps its place.
void put(DeviceAddresses& addresses, const Ip4Address& address);

// What an interface is known by.
struct Ip4Selection {
   Wirekit::IpAddrWithMask active;  // none: all zero
   std::set<Wirekit::IpAddrWithMask> secondaries;
};

// The active address is the first primary one, those that hold everywhere before narrower ones.
// Without a primary one it is the first of the others: the kernel takes a primary address away
// before it says that another has taken its place. Addresses of the machine itself (127/8, or of
// the scope of the host) and those without a mask are not told, and an address with several masks
// is told once.
Ip4Selection selected(const std::vector<Ip4Address>& ip4);

// All of them by index of the device. Listeners are told of many changes together.
class Addresses {
 public:
   using Listener = std::function<void(const std::set<int32_t>& ifIndices)>;
   void listenerIs(Listener listener) { listeners_.push_back(std::move(listener)); }

   void ip4Is(int32_t ifIndex, const Ip4Address& address);
   void ip4Del(int32_t ifIndex, const Ip4Address& address);
   void ip6Is(int32_t ifIndex, const Wirekit::Ip6AddrWithMask& addr);
   void ip6Del(int32_t ifIndex, const Wirekit::Ip6AddrWithMask& addr);
   // Those of a device that has gone.
   void deviceDel(int32_t ifIndex);
   void addressesAre(std::map<int32_t, DeviceAddresses> all);
   // Tells what has changed since the last time.
   void tell();

   const DeviceAddresses& at(int32_t ifIndex) const;

 private:
   std::map<int32_t, DeviceAddresses> all_;
   std::set<int32_t> changed_;
   std::vector<Listener> listeners_;
};

}  // namespace Host
