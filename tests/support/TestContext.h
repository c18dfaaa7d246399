// A context of its own for each test: time that is moved by hand, and outlets that keep what is
// traced and logged.
#pragma once

#include <algorithm>
#include <memory>
#include <string>
#include <vector>

#include "Rex/Context.h"
#include "Rex/Log.h"
#include "Rex/System.h"
#include "Rex/Trace.h"

namespace LldpTest {

class TestContext {
 public:
   static constexpr double start = 1000;  // seconds; whole seconds from here add up exactly

   explicit TestContext(double startTime = start)
       : time_(std::make_shared<Rex::ManualTime>(startTime)),
         context_(Rex::make<Rex::Clock>(time_)),
         scope_(context_) {
      context_.traceSink = [this](const Rex::TraceRecord& record) { traces.push_back(record); };
      context_.logSink = [this](const Rex::LogEvent& event) { logs.push_back(event); };
   }

   Rex::Context& context() { return context_; }
   double now() const { return time_->now(); }

   // Moves the time without running anything.
   void timeIs(double time) { time_->nowIs(time); }
   // Runs what is due now, and what that makes due now. Returns how many timers ran.
   size_t settle() {
      size_t ran = 0;
      while (context_.clock()->nextTime() <= now()) ran += context_.clock()->runDue();
      return ran;
   }
   // Moves the time to `time`, stopping at each deadline on the way. Returns how many times it
   // stopped: the wakeups of a process that has nothing else to do.
   size_t advanceTo(double time) {
      settle();
      size_t stops = 0;
      while (context_.clock()->nextTime() <= time) {
         time_->nowIs(std::max(now(), context_.clock()->nextTime()));
         settle();
         ++stops;
      }
      time_->nowIs(time);
      return stops;
   }
   size_t advance(double seconds) { return advanceTo(now() + seconds); }

   // Keeps the statements of a facility from here on: those of the levels in the mask.
   void traceOn(const std::string& facility, uint16_t levels = 0x3FF) {
      context_.traceMaskIs(facility, levels);
   }
   // The texts kept so far, which are forgotten.
   std::vector<std::string> takeTraces() {
      std::vector<std::string> texts;
      for (auto& record : traces) texts.push_back(record.text);
      traces.clear();
      return texts;
   }
   // The texts of one level among those kept so far.
   std::vector<std::string> traced(int level) const {
      std::vector<std::string> texts;
      for (const auto& record : traces) {
         if (record.level == level) texts.push_back(record.text);
      }
      return texts;
   }
   // "<name>: <text>" of each event so far; they are forgotten.
   std::vector<std::string> takeLogs() {
      std::vector<std::string> texts;
      for (auto& event : logs) texts.push_back(std::string(event.name) + ": " + event.text);
      logs.clear();
      return texts;
   }

   std::vector<Rex::TraceRecord> traces;
   std::vector<Rex::LogEvent> logs;

 private:
   std::shared_ptr<Rex::ManualTime> time_;
   Rex::Context context_;
   Rex::ContextScope scope_;
};

}  // namespace LldpTest
