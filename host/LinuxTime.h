// The process's time: monotonic seconds, anchored to the wall clock once a boot.
#pragma once

#include <string>

#include "Rex/Clock.h"

namespace Host {

class LinuxTime : public Rex::TimeSource {
 public:
   // Throws StartError.
   explicit LinuxTime(const std::string& runDir);
   double now() const override;

 private:
   double offset_;
};

}  // namespace Host
