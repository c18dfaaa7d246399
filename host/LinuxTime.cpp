#include "host/LinuxTime.h"

#include <time.h>

#include <fstream>

#include "host/TimeAnchor.h"

namespace Host {
namespace {

double seconds(clockid_t clock) {
   timespec time{};
   clock_gettime(clock, &time);
   return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) * 1e-9;
}

std::string bootId() {
   std::string id;
   std::ifstream("/proc/sys/kernel/random/boot_id") >> id;
   return id.empty() ? "unknown" : id;
}

}  // namespace

LinuxTime::LinuxTime(const std::string& runDir)
    : offset_(timeAnchor(runDir + "/time-anchor", bootId(),
                         seconds(CLOCK_REALTIME) - seconds(CLOCK_MONOTONIC))) {}

double LinuxTime::now() const {
   return offset_ + seconds(CLOCK_MONOTONIC);
}

}  // namespace Host
