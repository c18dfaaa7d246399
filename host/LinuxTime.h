// The process's time: monotonic seconds, anchored to the wall clock once a boot.
#pragma once

#include <string>

#include "Rex/Clock.h"

namespace Host {

class LinuxTime : public Rex::TimeSource {
 public:
   // Throws StartError.
   explicit LinuxTime(const std::string& runDir);
   // The time that the processes of a folder keep, if one of this boot does and it can be read;
   // else the wall clock as it is now. Writes nothing.
   static LinuxTime asOthersKeepIt(const std::string& runDir);
   double now() const override;

 private:
   explicit LinuxTime(double offset) : offset_(offset) {}

   double offset_;
};

}  // namespace Host
