// Where log events and trace statements go: syslog and standard error.
#pragma once

#include <functional>

#include "Rex/Context.h"

namespace Host {

// Log events go to syslog(3), and to standard error too when that is a terminal; trace statements
// to standard error.
void outletsIs(Rex::Context& context);

// Hears a context's log events as long as it lives; they go where they went all the same. Of two
// taps the later one goes first.
class LogTap {
 public:
   LogTap(Rex::Context& context, std::function<void(const Rex::LogEvent&)> hear);
   ~LogTap();
   LogTap(const LogTap&) = delete;
   LogTap& operator=(const LogTap&) = delete;

 private:
   Rex::Context& context_;
   const std::function<void(const Rex::LogEvent&)> outlet_;
};

}  // namespace Host
