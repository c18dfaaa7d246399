#include "host/Outlets.h"

#include <fmt/format.h>
#include <syslog.h>
#include <unistd.h>

#include "Rex/Log.h"
#include "Rex/Trace.h"

namespace Host {
namespace {

// One call for one line, so that lines of two processes do not mix.
void writeLine(const std::string& line) {
   ssize_t lost = write(STDERR_FILENO, line.data(), line.size());
   static_cast<void>(lost);
}

void logEvent(const Rex::LogEvent& event, bool terminal) {
   syslog(event.severity, "%s: %s", event.name, event.text.c_str());
   if (terminal) writeLine(fmt::format("{}: {}\n", event.name, event.text));
}

void traceRecord(const Rex::TraceRecord& record) {
   writeLine(
       fmt::format("{:.6f} {} {} {}\n", record.time, record.facility, record.level, record.text));
}

}  // namespace

void outletsIs(Rex::Context& context) {
   openlog("lldp-agentd", LOG_PID | LOG_NDELAY, LOG_DAEMON);
   bool terminal = isatty(STDERR_FILENO);
   context.logSink = [terminal](const Rex::LogEvent& event) { logEvent(event, terminal); };
   context.traceSink = traceRecord;
}

LogTap::LogTap(Rex::Context& context, std::function<void(const Rex::LogEvent&)> hear)
    : context_(context), outlet_(context.logSink) {
   context_.logSink = [hear = std::move(hear), outlet = outlet_](const Rex::LogEvent& event) {
      hear(event);
      if (outlet) outlet(event);
   };
}

LogTap::~LogTap() {
   context_.logSink = outlet_;
}

}  // namespace Host
