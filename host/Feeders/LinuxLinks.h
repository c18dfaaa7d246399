// Keeps Links up to date from the kernel (rtnetlink(7)).
#pragma once

#include <memory>

#include "Rex/Loop.h"
#include "Rex/Timer.h"
#include "host/Feeders/Links.h"

struct nl_msg;
struct nl_sock;

namespace Host {

class LinuxLinks {
 public:
   // Fills `links` and follows the kernel from then on. Throws StartError.
   LinuxLinks(Rex::Loop& loop, Links& links);
   ~LinuxLinks();
   LinuxLinks(const LinuxLinks&) = delete;
   LinuxLinks& operator=(const LinuxLinks&) = delete;

 private:
   struct CloseSocket {
      void operator()(nl_sock* socket) const;
   };
   using Socket = std::unique_ptr<nl_sock, CloseSocket>;

   // Notifications handed out in one turn of the loop.
   static constexpr int messagesPerTurn = 256;

   static Socket connect();
   static int handleMessage(nl_msg* message, void* self);
   void waitFor(uint32_t events);
   void handleReady(uint32_t events);
   void handleReadable();
   // Reads everything anew. False when the kernel could not tell it whole.
   bool readAll();
   void recover();

   Rex::Loop& loop_;
   Links& links_;
   Socket news_;
   double patience_;  // seconds until readAll() is tried again
   Rex::Timer retry_;
};

// What stays the same about a device across reboots and re-plugging: its permanent address, else
// its place on a bus, else (veth has neither) its name.
std::string deviceIdentity(const Link& link);

}  // namespace Host
