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

double wallOffset() {
   return seconds(CLOCK_REALTIME) - seconds(CLOCK_MONOTONIC);
}

std::string fileIn(const std::string& runDir) {
   return runDir + "/time-anchor";
}

}  // namespace

LinuxTime::LinuxTime(const std::string& runDir)
    : offset_(timeAnchor(fileIn(runDir), bootId(), wallOffset())) {}

LinuxTime LinuxTime::asOthersKeepIt(const std::string& runDir) {
   return LinuxTime(standingAnchor(fileIn(runDir), bootId()).value_or(wallOffset()));
}

double LinuxTime::now() const {
   return offset_ + seconds(CLOCK_MONOTONIC);
}

}  // namespace Host
