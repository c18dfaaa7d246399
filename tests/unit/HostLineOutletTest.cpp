// Trace for somebody who has stopped reading.
#include <gmock/gmock.h>
#include <unistd.h>

#include "host/LineOutlet.h"

namespace {

using testing::EndsWith;
using testing::HasSubstr;

TEST(LineOutlet, ALineThatNobodyReadsIsLeftOutAndCounted) {
   int ends[2];
   ASSERT_EQ(pipe(ends), 0);
   Host::LineOutlet outlet(ends[1]);
   const std::string line(1000, 'x');
   for (int i = 0; i < 1000; ++i)
      outlet.lineIs(line);  // a pipe takes 64 KiB, and is not waited for
   std::string taken(1 << 20, 0);
   ssize_t octets = read(ends[0], taken.data(), taken.size());
   ASSERT_GT(octets, 0);
   const long lines = octets / 1001;
   outlet.lineIs(std::string(1 << 20, 'y'));
   taken.resize(static_cast<size_t>(read(ends[0], taken.data(), taken.size())));
   EXPECT_THAT(taken, HasSubstr("(" + std::to_string(1000 - lines) + " lines before this one"));
   EXPECT_THAT(taken, EndsWith("yyy\n"));
   EXPECT_LT(taken.size(), 5000u) << "cut to what a pipe takes whole";
   close(ends[0]);
   close(ends[1]);
}

}  // namespace
