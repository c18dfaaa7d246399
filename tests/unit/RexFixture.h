// A context with time driven by hand, for tests of what stands on a clock.
#pragma once

#include <gtest/gtest.h>

#include <memory>

#include "Rex/Context.h"

struct RexFixture : testing::Test {
   std::shared_ptr<Rex::ManualTime> time = std::make_shared<Rex::ManualTime>();
   Rex::Ptr<Rex::Clock> clock = Rex::make<Rex::Clock>(time);
   Rex::Context context{clock};
   Rex::ContextScope scope{context};

   // Moves the time on by `seconds` and makes one pass.
   size_t pass(double seconds = 0) {
      time->nowIs(time->now() + seconds);
      return clock->runDue();
   }
};
