// Keeps a Network up to date from the kernel (rtnetlink(7)): devices, addresses, VLANs of bridge
// ports.
#pragma once

#include <cstdint>
#include <map>
#include <set>
#include <string>

#include "Rex/Loop.h"
#include "Rex/Timer.h"
#include "host/Feeders/Netlink.h"
#include "host/Feeders/Network.h"

namespace Host {

class LinuxNetwork {
 public:
   // Fills `network` and follows the kernel from then on. Throws StartError.
   LinuxNetwork(Rex::Loop& loop, Network& network);
   ~LinuxNetwork();
   LinuxNetwork(const LinuxNetwork&) = delete;
   LinuxNetwork& operator=(const LinuxNetwork&) = delete;

 private:
   // Notifications handed out in one turn of the loop.
   static constexpr int messagesPerTurn = 256;

   void waitFor(uint32_t events);
   void handleReady(uint32_t events);
   void handleReadable();
   void handleMessage(const nlmsghdr& message);
   void handleLink(const nlmsghdr& message);
   void handleAddress(const nlmsghdr& message);
   // What came together is told together.
   bool finishTurn();
   // Reads everything anew. False when the kernel could not tell it whole.
   bool readAll();
   void recover();

   Rex::Loop& loop_;
   Network& network_;
   Netlink news_;
   std::set<int32_t> vlanNews_;  // devices whose VLANs have to be read
   double patience_;             // seconds until readAll() is tried again
   Rex::Timer retry_;
};

// What stays the same about a device across reboots and re-plugging: its permanent address, else
// its place on a bus, else (veth has neither) its name.
std::string deviceIdentity(const Link& link);

}  // namespace Host
