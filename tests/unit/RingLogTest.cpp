// The ring trace: what a process leaves behind.
#include <gmock/gmock.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <filesystem>
#include <fstream>
#include <random>
#include <system_error>

#include "RingLog/Reader.h"
#include "RingLog/RingLog.h"
#include "support/Refusal.h"
#include "unit/HostFeedersFolder.h"
#include "unit/RexFixture.h"

using testing::ElementsAre;
using testing::HasSubstr;

namespace {
const Rex::TraceHandle trace("RingLogTest", false);
}

struct RingLogFile : RexFixture {
   Host::TestFolder temporary;
   const std::filesystem::path folder = temporary.path;
   std::vector<std::string> traced;
   int evaluated = 0;

   RingLogFile() {
      context.runDir = folder.string();
      unsetenv("RINGLOGDIR");
      context.traceSink = [this](const Rex::TraceRecord& record) { traced.push_back(record.text); };
   }

   void start(const char* name, uint32_t kibibytes = 32, int longest = 512) {
      RingLog::Sizes sizes;
      sizes.fill(kibibytes);
      RingLog::initialize(name, sizes, nullptr, 0, 24, 0, true, longest);
   }
   std::vector<std::string> texts() {
      std::vector<std::string> all;
      for (const auto& record : RingLog::read(RingLog::path().stdString())) {
         all.push_back(std::to_string(record.level) + " " + record.text);
      }
      return all;
   }
   int operand() { return ++evaluated; }
};

TEST_F(RingLogFile, WithoutARingNothingIsEvaluatedAndDualLogIsATrace) {
   RINGLOG(trace, 6, operand());
   DualLog(trace, 6, operand());
   EXPECT_EQ(evaluated, 0);
   context.traceMaskIs("RingLogTest", 1 << 6);
   RINGLOG(trace, 6, operand());
   DualLog(trace, 6, "dual " << operand());
   EXPECT_THAT(traced, ElementsAre("dual 1"));
   EXPECT_EQ(RingLog::path(), "");
}

TEST_F(RingLogFile, StatementsOfAllLevelsComeBackInOrder) {
   start("agent-%d.rl");
   EXPECT_EQ(RingLog::path().stdString(),
             (folder / ("agent-" + std::to_string(getpid()) + ".rl")).string());
   RINGLOG(trace, 8, "first " << 1);
   pass(1.5);
   DualLog(trace, 0, "second " << Rex::String("\x1b") << operand());
   context.traceMaskIs("RingLogTest", 1 << 8);
   DualLog(trace, 8, "third " << operand());
   RINGLOG(trace, 10, "no such level");
   EXPECT_THAT(traced, ElementsAre("third 2"));
   EXPECT_THAT(texts(), ElementsAre("8 first 1", "0 second \\x1b1", "8 third 2"));
   auto records = RingLog::read(RingLog::path().stdString());
   EXPECT_EQ(records[0].facility, "RingLogTest");
   EXPECT_EQ(records[1].time - records[0].time, 1.5);
   EXPECT_EQ(records[2].sequence, 2u);
   EXPECT_EQ(std::filesystem::file_size(RingLog::path().stdString()), 200 + 10 * 32 * 1024u);
}

TEST_F(RingLogFile, ABusyLevelPushesOutNoOther) {
   start("a.rl", 1);
   RINGLOG(trace, 0, "rare");
   for (int i = 0; i < 1000; ++i) RINGLOG(trace, 8, "busy " << i);
   auto all = texts();
   EXPECT_EQ(all.front(), "0 rare");
   EXPECT_EQ(all.back(), "8 busy 999");
   EXPECT_GT(all.size(), 15u);
   EXPECT_LT(all.size(), 30u);
}

// Whatever the lengths, the file holds an unbroken run of the latest statements of its ring.
TEST_F(RingLogFile, TheLatestStatementsStandUnbrokenForAnyLengths) {
   for (unsigned seed = 1; seed <= 20; ++seed) {
      std::mt19937 random(seed);
      start("a.rl", 1, 900);
      unsigned written = 0;
      for (int i = 0; i < 400; ++i) {
         std::string text(random() % (seed % 2 ? 60 : 900), 'x');
         RINGLOG(trace, 3, text);
         if (++written % 5) continue;
         auto records = RingLog::read(RingLog::path().stdString());
         ASSERT_FALSE(records.empty());
         size_t octets = 0;
         for (size_t r = 0; r < records.size(); ++r) {
            ASSERT_EQ(records[r].sequence, written - records.size() + r) << "seed " << seed;
            octets += records[r].text.size() + 24 + 11;
         }
         ASSERT_EQ(records.back().text, text) << "seed " << seed;
         // At most one record's length and the turn at the end go unused.
         if (written > 100) {
            ASSERT_GT(octets, seed % 2 ? 1024 - 2 * 128u : 35u);
         }
      }
   }
}

TEST_F(RingLogFile, ALongStatementIsCut) {
   start("a.rl", 32, 16);
   context.traceMaskIs("RingLogTest", 1 << 2);
   DualLog(trace, 2, std::string(5000, 'y'));
   EXPECT_THAT(texts(), ElementsAre("2 " + std::string(16, 'y')));
   EXPECT_THAT(traced, ElementsAre(std::string(RingLog::Statement::room, 'y')));
}

TEST_F(RingLogFile, OutlivesItsProcessAndIsKeptBesideItsSuccessor) {
   std::string path = (folder / "agent.rl").string();
   pid_t child = fork();
   if (child == 0) {
      start("agent.rl");
      RINGLOG(trace, 4, "last words");
      raise(SIGKILL);
   }
   int status = 0;
   ASSERT_EQ(waitpid(child, &status, 0), child);
   ASSERT_TRUE(WIFSIGNALED(status));
   auto left = RingLog::read(path);
   ASSERT_EQ(left.size(), 1u);
   EXPECT_EQ(left[0].text, "last words");

   start("agent.rl");
   EXPECT_TRUE(texts().empty());
   EXPECT_EQ(RingLog::read(path + ".last").size(), 1u);
}

TEST_F(RingLogFile, AFolderThatCannotBeWrittenIsOneClearError) {
   context.runDir = (folder / "absent").string();
   std::string words = LldpTest::refusal<std::system_error>([&] { start("agent.rl"); });
   EXPECT_THAT(words, HasSubstr("ring trace " + context.runDir + "/agent.rl"));
   EXPECT_THAT(words, HasSubstr("No such file or directory"));
   RINGLOG(trace, 1, "goes nowhere");
   EXPECT_EQ(RingLog::path(), "");
}

TEST_F(RingLogFile, TheReaderSurvivesAnyDamage) {
   start("a.rl", 1);
   for (int i = 0; i < 50; ++i) RINGLOG(trace, 5, "statement " << i);
   std::ifstream in(RingLog::path().stdString(), std::ios::binary);
   std::string sound{std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
   std::string path = (folder / "damaged").string();
   auto readBack = [&](const std::string& octets) {
      std::ofstream(path, std::ios::binary) << octets;
      return RingLog::read(path).size();
   };
   size_t whole = readBack(sound);
   EXPECT_GT(whole, 10u);
   for (size_t length = 0; length < sound.size(); length += 37) {
      if (length < 200) {
         EXPECT_THROW(readBack(sound.substr(0, length)), std::runtime_error);
      } else {
         EXPECT_LE(readBack(sound.substr(0, length)), whole);
      }
   }
   std::mt19937 random(1);
   for (int i = 0; i < 500; ++i) {
      std::string damaged = sound;
      for (int flips = 0; flips < 8; ++flips) {
         damaged[24 + random() % (damaged.size() - 24)] = static_cast<char>(random());
      }
      EXPECT_LE(readBack(damaged), 1000u);
   }
}
