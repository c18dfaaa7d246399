// Everything that there is once for each process hangs on one exchangeable context: cell number,
// clock, folders, trace masks, outlets, and services such as the packet pool. The process has one;
// a test that runs two whole agents makes two, and each machine runs in the one it was made in.
#pragma once

#include <functional>
#include <map>
#include <memory>
#include <string>
#include <typeindex>

#include "Rex/Clock.h"
#include "Rex/Ptr.h"
#include "Rex/TraceMasks.h"

namespace Rex {

struct LogEvent;
struct TraceRecord;

class Context {
 public:
   explicit Context(Ptr<Clock> clock);
   ~Context();
   Context(const Context&) = delete;
   Context& operator=(const Context&) = delete;

   // The present context. One has to stand before any machine is made.
   static Context& current();

   int cellId = 1;                       // this supervisor's number, 1 or 2
   std::string runDir = ".";             // files that live as long as this boot
   std::map<std::string, bool> toggles;  // named features that differ from their default

   const Ptr<Clock>& clock() const { return clock_; }

   // Where trace statements and log events go. Unset: standard error, nowhere.
   std::function<void(const TraceRecord&)> traceSink;
   std::function<void(const LogEvent&)> logSink;
   // When each log event went out last, by its name.
   std::map<std::string, double> lastLogged;

   // The level mask of one trace facility.
   void traceMaskIs(const std::string& facility, uint16_t levels);

   // The one object of type T of this context, made at the first call.
   template <class T>
   T& service() {
      auto& slot = services_[typeid(T)];
      if (!slot) slot = std::make_shared<T>();
      return *static_cast<T*>(slot.get());
   }
   // Puts an object in the place of the one that would be made, a derived one too.
   template <class T>
   void serviceIs(std::shared_ptr<T> object) {
      services_[typeid(T)] = std::move(object);
   }

 private:
   friend class ContextScope;
   Ptr<Clock> clock_;
   TraceMasks masks_{};
   std::map<std::type_index, std::shared_ptr<void>> services_;
};

// Makes a context the present one for a while.
class ContextScope {
 public:
   explicit ContextScope(Context& context);
   ~ContextScope();
   ContextScope(const ContextScope&) = delete;
   ContextScope& operator=(const ContextScope&) = delete;

 private:
   Context* before_;
};

}  // namespace Rex
