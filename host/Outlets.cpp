#include "host/Outlets.h"

#include <fmt/format.h>
#include <syslog.h>
#include <unistd.h>

#include <memory>

#include "Rex/Log.h"
#include "Rex/Trace.h"
#include "host/LineOutlet.h"

namespace Host {
namespace {

std::string lineOf(const Rex::TraceRecord& record) {
   return fmt::format("{:.6f} {} {} {}", record.time, record.facility, record.level, record.text);
}

}  // namespace

void outletsIs(Rex::Context& context) {
   openlog("lldp-agentd", LOG_PID | LOG_NDELAY, LOG_DAEMON);
   auto standardError = std::make_shared<LineOutlet>(STDERR_FILENO);
   auto terminal = isatty(STDERR_FILENO) ? standardError : nullptr;
   context.logSink = [terminal](const Rex::LogEvent& event) {
      syslog(event.severity, "%s: %s", event.name, event.text.c_str());
      if (terminal) terminal->lineIs(fmt::format("{}: {}", event.name, event.text));
   };
   context.traceSink = [standardError](const Rex::TraceRecord& record) {
      standardError->lineIs(lineOf(record));
   };
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
