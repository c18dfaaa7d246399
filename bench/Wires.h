// Devices of Linux for a benchmark, in a network namespace of its own: p0 and p1 are joined by a
// wire, p2 and p3, and so on.
#pragma once

#include <net/if.h>
#include <sched.h>

#include <cstdio>
#include <string>

namespace Bench {

inline std::string device(int i) {
   return "p" + std::to_string(i);
}
inline int deviceIndex(int i) {
   return static_cast<int>(if_nametoindex(device(i).c_str()));
}

// From here on the process sees these devices and no others. False without the right to do it.
inline bool makeDevices(int devices) {
   static int standing = 0;
   if (standing == devices) return true;
   if (unshare(CLONE_NEWNET) != 0) return false;
   standing = 0;
   FILE* batch = popen("ip -batch -", "w");
   for (int i = 0; i < devices; i += 2) {
      fprintf(batch, "link add name %s type veth peer name %s\n", device(i).c_str(),
              device(i + 1).c_str());
   }
   for (int i = 0; i < devices; ++i) fprintf(batch, "link set dev %s up\n", device(i).c_str());
   if (pclose(batch) != 0) return false;
   standing = devices;
   return true;
}

}  // namespace Bench
