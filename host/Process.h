// What every process of the host has: an end when it is told to stop, and what it tells of itself.
#pragma once

#include "Rex/Json.h"
#include "Rex/Loop.h"

namespace Host {

class Process {
 public:
   // SIGTERM and SIGINT stop the loop from here on. Throws StartError.
   explicit Process(Rex::Loop& loop);
   ~Process();
   Process(const Process&) = delete;
   Process& operator=(const Process&) = delete;

   // The loop may run on, undisturbed.
   void forgetSignals();
   // What /v1/agent tells of any process.
   Rex::Json describe() const;

 private:
   Rex::Loop& loop_;
   int signals_;
   const double startTime_;
};

}  // namespace Host
