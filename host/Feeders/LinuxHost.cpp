#include "host/Feeders/LinuxHost.h"

#include <fcntl.h>
#include <sys/epoll.h>
#include <sys/utsname.h>
#include <unistd.h>

#include <fstream>
#include <sstream>

namespace Host {
namespace {

std::string osRelease() {
   for (const char* file : {"/etc/os-release", "/usr/lib/os-release"}) {
      std::ifstream in(file);
      std::ostringstream text;
      if (in && text << in.rdbuf()) return text.str();
   }
   return {};
}

}  // namespace

LinuxHost::LinuxHost(Rex::Loop& loop, HostFeeder& feeder) : loop_(loop), feeder_(feeder) {
   watch("/proc/sys/kernel/hostname");
   watch("/proc/sys/kernel/domainname");
   feeder_.factsAre(facts());
}

LinuxHost::~LinuxHost() {
   for (int fd : watched_) {
      loop_.descriptorDel(fd);
      close(fd);
   }
}

// The kernel tells of a change by an exceptional condition on the file (proc(5)). Where there is no
// such file the name stays what it was at the start.
void LinuxHost::watch(const char* file) {
   int fd = open(file, O_RDONLY | O_CLOEXEC);
   if (fd < 0) return;
   watched_.insert(fd);
   auto changed = [this](uint32_t) { feeder_.factsAre(facts()); };
   loop_.descriptorIs(fd, EPOLLPRI, changed, Rex::Loop::Serve::outside);
}

HostFacts LinuxHost::facts() {
   utsname name{};
   uname(&name);
   std::string description = HostFacts::systemName(osRelease()) + " " + name.sysname + " " +
                             name.release + " " + name.machine;
   return HostFacts::fromKernel(name.nodename, name.domainname, description);
}

}  // namespace Host
