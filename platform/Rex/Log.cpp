#include "Rex/Log.h"

#include <cctype>

#include "Rex/Context.h"

namespace Rex {

LogHandle::LogHandle(const char* name, int severity, const char* format, const char* explanation,
                     const char* recommendedAction, double minInterval, double /*burst*/,
                     int /*rateKeyArguments*/)
    : name_(name),
      severity_(severity),
      format_(format),
      explanation_(explanation),
      recommendedAction_(recommendedAction),
      minInterval_(minInterval) {}

bool LogHandle::okToLog() const {
   if (minInterval_ <= 0) return true;
   Context& context = Context::current();
   double now = context.clock()->now();
   auto [last, first] = context.lastLogged.try_emplace(name_, now);
   if (!first && now - last->second < minInterval_) return false;
   last->second = now;
   return true;
}

void logStrings(const LogHandle& handle, const std::vector<std::string>& arguments) {
   Context& context = Context::current();
   if (!context.logSink) return;
   std::string text;
   size_t next = 0;
   for (const char* at = handle.format(); *at; ++at) {
      bool conversion = *at == '%' && std::isalpha(static_cast<unsigned char>(at[1]));
      if (!conversion) {
         text += *at;
         continue;
      }
      ++at;
      if (next < arguments.size()) text += arguments[next++];
   }
   context.logSink({context.clock()->now(), handle.name(), handle.severity(), std::move(text)});
}

}  // namespace Rex
