// Time and clock of the present context, under the names that the agent's logic uses.
#pragma once

#include "Rex/Context.h"

namespace Rex {

struct System {
   // Absolute time in seconds. All times in the agent's entities use this base.
   static double currentTime() { return Context::current().clock()->now(); }
};

// Configuration of the process's activity module: its one clock, and how its loop waits.
class ActivityManagerConfig {
 public:
   const Ptr<Clock>& clock() const { return Context::current().clock(); }
   // Whether the loop is to wait with epoll. It always does; the setting stands for the record.
   bool useEpoll() const { return useEpoll_; }
   void useEpollIs(bool useEpoll) { useEpoll_ = useEpoll; }

 private:
   bool useEpoll_ = false;
};

struct ActivityFacility {
   static ActivityManagerConfig& activityManagerConfig() {
      return Context::current().service<ActivityManagerConfig>();
   }
};

}  // namespace Rex
