// The main loop, on pipes and hand-driven time.
#include <fcntl.h>
#include <gmock/gmock.h>
#include <sys/epoll.h>
#include <unistd.h>

#include <array>
#include <cstring>
#include <system_error>

#include "Rex/Dispatcher.h"
#include "Rex/Loop.h"
#include "unit/RexFixture.h"

using testing::ElementsAre;

namespace {

struct Pipe {
   std::array<int, 2> ends;
   Pipe() { EXPECT_EQ(pipe2(ends.data(), O_NONBLOCK | O_CLOEXEC), 0); }
   ~Pipe() {
      close(ends[0]);
      close(ends[1]);
   }
   int in() const { return ends[0]; }
   void write(const char* text) const { EXPECT_GT(::write(ends[1], text, strlen(text)), 0); }
   std::string read() const {
      char text[64];
      auto length = ::read(ends[0], text, sizeof(text));
      return std::string(text, length > 0 ? static_cast<size_t>(length) : 0);
   }
};

}  // namespace

struct RexLoop : RexFixture {
   Rex::Loop loop;
   Pipe one, two;
   std::vector<std::string> heard;
};

TEST_F(RexLoop, ServesDescriptorsAsReactionsInTheContext) {
   one.write("x");
   loop.descriptorIs(one.in(), EPOLLIN, [&](uint32_t events) {
      EXPECT_TRUE(events & EPOLLIN);
      EXPECT_TRUE(Rex::Dispatcher::running());
      EXPECT_EQ(&Rex::Context::current(), &context);
      heard.push_back(one.read());
      two.write("y");
   });
   loop.descriptorIs(two.in(), EPOLLIN, [&](uint32_t) {
      heard.push_back(two.read());
      loop.stop();
   });
   loop.run(context);
   EXPECT_THAT(heard, ElementsAre("x", "y"));
   EXPECT_EQ(loop.wakeups(), 2u);
}

TEST_F(RexLoop, AnIdleLoopDoesNotWake) {
   // A timer that never comes, one long past its use, and a pipe that nobody writes to.
   Rex::Timer far(clock), cancelled(clock), due(clock);
   far.timeMinIs(Rex::never);
   cancelled.timeMinIs(time->now() + 1);
   cancelled.cancel();
   due.handlerIs(nullptr, [&] { one.write("x"); });
   due.timeMinIs(0.0);
   loop.descriptorIs(two.in(), EPOLLIN, [&](uint32_t) { heard.push_back("never"); });
   loop.descriptorIs(one.in(), EPOLLIN, [&](uint32_t) { loop.stop(); });
   loop.run(context);
   EXPECT_EQ(loop.wakeups(), 1u);
   EXPECT_TRUE(heard.empty());
}

TEST_F(RexLoop, ADescriptorMayBeRemovedByItsOwnHandlerAndByAnother) {
   auto remove = [&](int self, int other) {
      return [&, self, other](uint32_t) {
         heard.push_back("once");
         loop.descriptorDel(other);
         loop.descriptorDel(self);
         loop.descriptorDel(self);
         loop.stop();
      };
   };
   one.write("x");
   two.write("y");
   loop.descriptorIs(one.in(), EPOLLIN, remove(one.in(), two.in()));
   loop.descriptorIs(two.in(), EPOLLIN, remove(two.in(), one.in()));
   loop.run(context);
   EXPECT_THAT(heard, ElementsAre("once"));
}

TEST_F(RexLoop, ASecondCallChangesTheHandlerAlsoFromWithinIt) {
   one.write("x");
   loop.descriptorIs(one.in(), EPOLLIN, [&](uint32_t) {
      heard.push_back("first");
      loop.descriptorIs(one.in(), EPOLLIN, [&](uint32_t) {
         heard.push_back("second");
         loop.stop();
      });
      heard.push_back("still first");
   });
   loop.run(context);
   EXPECT_THAT(heard, ElementsAre("first", "still first", "second"));
}

TEST_F(RexLoop, ABusyDescriptorDoesNotStarveTimersNorTimersOfNoIntervalADescriptor) {
   one.write("x");
   int reads = 0;
   Rex::Timer spin(clock);
   loop.descriptorIs(one.in(), EPOLLIN, [&](uint32_t) {
      if (++reads == 5) loop.stop();
   });
   int ticks = 0;
   spin.handlerIs(nullptr, [&] {
      ++ticks;
      spin.timeMinIs(0.0);
   });
   spin.timeMinIs(0.0);
   loop.run(context);
   EXPECT_EQ(reads, 5);
   EXPECT_EQ(ticks, 5);
}

TEST_F(RexLoop, ABadDescriptorIsAnErrorOfTheCaller) {
   EXPECT_THROW(loop.descriptorIs(-1, EPOLLIN, [](uint32_t) {}), std::system_error);
   EXPECT_NO_THROW(loop.descriptorDel(-1));
}
