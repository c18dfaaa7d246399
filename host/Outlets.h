// Where log events and trace statements go: syslog and standard error.
#pragma once

#include "Rex/Context.h"

namespace Host {

// Log events go to syslog(3), and to standard error too when that is a terminal; trace statements
// to standard error.
void outletsIs(Rex::Context& context);

}  // namespace Host
