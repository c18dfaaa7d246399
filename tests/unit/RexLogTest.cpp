// Log events and trace: the two outlets that hang on the context.
#include <gmock/gmock.h>

#include "Rex/Log.h"
#include "Rex/Trace.h"
#include "unit/RexFixture.h"

using testing::ElementsAre;

namespace {

const Rex::TraceHandle trace("RexLogTest", false);
const Rex::LogHandle added("THING_ADDED", 5, "%s added with %d in %f (100%)", "A thing came.",
                           Rex::NoActionRequired, 0.0, 1.0, 0);
const Rex::LogHandle limited("THING_LIMITED", 4, "on %s", "Too many.", "Look.", 60.0, 1.0, 0);

}  // namespace

struct RexLog : RexFixture {
   std::vector<std::string> lines;
   std::vector<std::string> traced;
   int evaluated = 0;

   RexLog() {
      context.logSink = [this](const Rex::LogEvent& event) {
         lines.push_back(std::string(event.name) + " " + std::to_string(event.severity) + " " +
                         event.text);
      };
      context.traceSink = [this](const Rex::TraceRecord& record) {
         traced.push_back(std::string(record.facility) + " " + std::to_string(record.level) + " " +
                          record.text);
      };
   }
   int operand() { return ++evaluated; }
};

TEST_F(RexLog, ArgumentsTakeTheConversionsInOrder) {
   Rex::log(added, Rex::String("%s\n"), 7, 0.5);
   Rex::log(added, "one");
   Rex::log(added, "one", 2, 3.0, "too many");
   EXPECT_THAT(lines, ElementsAre("THING_ADDED 5 %s\\x0a added with 7 in 0.500000 (100%)",
                                  "THING_ADDED 5 one added with  in  (100%)",
                                  "THING_ADDED 5 one added with 2 in 3.000000 (100%)"));
}

TEST_F(RexLog, SpacingCountsForTheEventAsAWholeAndForEachContext) {
   Rex::log(limited, "Ethernet1");
   Rex::log(limited, "Ethernet2");
   pass(59.9);
   Rex::log(limited, "Ethernet1");
   pass(0.2);
   Rex::log(limited, "Ethernet3");
   pass(59.9);
   Rex::log(limited, "Ethernet3");
   Rex::log(added, "other events go their way", 1, 1.0);
   EXPECT_EQ(lines.size(), 3u);
   EXPECT_EQ(lines[1], "THING_LIMITED 4 on Ethernet3");

   Rex::Context second(clock);
   second.logSink = context.logSink;
   Rex::ContextScope inside(second);
   Rex::log(limited, "another process");
   EXPECT_EQ(lines.back(), "THING_LIMITED 4 on another process");
}

TEST_F(RexLog, TraceThatIsOffEvaluatesNothing) {
   for (int level = 0; level <= 9; ++level) TRACE(trace, level, "n " << operand());
   EXPECT_EQ(evaluated, 0);
   context.traceMaskIs("RexLogTest", 1 << 0 | 1 << 6);
   for (int level = 0; level <= 9; ++level) TRACE(trace, level, "n " << operand());
   EXPECT_THAT(traced, ElementsAre("RexLogTest 0 n 1", "RexLogTest 6 n 2"));
   context.traceMaskIs("RexLogTest", 0);
   TRACE(trace, 0, operand());
   EXPECT_EQ(evaluated, 2);
}
