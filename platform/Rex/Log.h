// Log events: what the operator reads in syslog. An event is defined once, with its severity, its
// format and what to do about it.
#pragma once

#include <string>
#include <vector>

#include "Rex/Value.h"

namespace Rex {

// The standard recommended action of an event that asks for none.
inline constexpr const char* NoActionRequired = "No action is required.";

struct LogEvent {
   double time;  // seconds, System::currentTime()
   const char* name;
   int severity;  // syslog numbering, 0 emergency to 7 debug (RFC 5424, 6.2.1)
   std::string text;
};

class LogHandle {
 public:
   // `minInterval`: least spacing in seconds, 0 for no limit. `rateKeyArguments` is how many
   // arguments tell occurrences of the event apart for the spacing; with 0 it counts for the event
   // as a whole. `burst` is the weight of one occurrence.
   LogHandle(const char* name, int severity, const char* format, const char* explanation,
             const char* recommendedAction, double minInterval, double burst, int rateKeyArguments);

   // Whether an occurrence goes out now; takes the event's turn if so.
   bool okToLog() const;
   const char* name() const { return name_; }
   int severity() const { return severity_; }
   const char* format() const { return format_; }
   const char* explanation() const { return explanation_; }
   const char* recommendedAction() const { return recommendedAction_; }
   double minInterval() const { return minInterval_; }

 private:
   const char* name_;
   int severity_;
   const char* format_;
   const char* explanation_;
   const char* recommendedAction_;
   double minInterval_;
};

// Hands an event, whose arguments are texts by now, to the context's outlet.
void logStrings(const LogHandle& handle, const std::vector<std::string>& arguments);

// Raises an event. The arguments become texts in order, each in the place of the format's next
// conversion (%s, %d, %f alike).
template <class... Args>
void log(const LogHandle& handle, const Args&... args) {
   if (!handle.okToLog()) return;
   logStrings(handle, {valueToString(args).stdString()...});
}

}  // namespace Rex
