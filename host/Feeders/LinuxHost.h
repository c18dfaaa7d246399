// Watches the kernel's host name, and reads what else the machine says of itself.
#pragma once

#include "Rex/Loop.h"
#include "host/Feeders/HostFeeder.h"

namespace Host {

class LinuxHost {
 public:
   LinuxHost(Rex::Loop& loop, HostFeeder& feeder);
   ~LinuxHost();
   LinuxHost(const LinuxHost&) = delete;
   LinuxHost& operator=(const LinuxHost&) = delete;

   static HostFacts facts();

 private:
   void watch(const char* file);

   Rex::Loop& loop_;
   HostFeeder& feeder_;
   std::set<int> watched_;
};

}  // namespace Host
