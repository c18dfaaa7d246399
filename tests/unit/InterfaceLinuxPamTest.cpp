// Packet access to real devices: pairs of virtual ones in a network namespace of each test's own.
// Needs the right to make one; skipped without.
#include <gtest/gtest.h>
#include <net/if.h>
#include <poll.h>
#include <sys/epoll.h>
#include <sys/ioctl.h>
#include <sys/socket.h>
#include <sys/timerfd.h>
#include <unistd.h>

#include <cstdlib>
#include <string>

#include "Interface/LinuxPamMaker.h"
#include "Rex/Clock.h"
#include "Rex/Context.h"
#include "Rex/Loop.h"
#include "Rex/StateMachine.h"
#include "support/Namespace.h"
#include "unit/LldpFilter.h"

namespace Interface {
namespace {

using LldpFilter::Octets;
using LldpTest::indexOf;
using LldpTest::inNamespace;
using LldpTest::ip;
using Wirekit::IntfId;

constexpr double guardSeconds = 20;

bool running(const std::string& device) {
   ifreq request{};
   device.copy(request.ifr_name, IFNAMSIZ - 1);
   int fd = socket(AF_INET, SOCK_DGRAM, 0);
   bool known = ioctl(fd, SIOCGIFFLAGS, &request) == 0;
   close(fd);
   return known && (request.ifr_flags & IFF_RUNNING);
}
// Two devices joined by a wire, ready to carry frames.
void makeWire(const std::string& a, const std::string& b) {
   LldpTest::makePair(a, b);
   for (const std::string& device : {a, b}) {
      // No router solicitations and the like: the wire carries what the test sends.
      std::system(("sysctl -qw net.ipv6.conf." + device + ".disable_ipv6=1 2>/dev/null").c_str());
   }
   // The kernel notices the carrier in its own time, and loses frames until then.
   for (int i = 0; i < 5000 && !(running(a) && running(b)); ++i) poll(nullptr, 0, 1);
   ip("link set dev " + a + " mtu 1500");  // goes behind what the kernel has begun
}

// One agent's devices on a loop of their own.
struct Bench {
   Bench() {
      auto instructions = LldpFilter::program().instructions();
      config.filter.assign(instructions.begin(), instructions.end());
      config.listenAddr = {0x01, 0x80, 0xC2, 0, 0, 0x0E};
      config.separateDot1QHdr = true;
      config.maxRxPktData = 10236;
      config.sockPrio = 7;
      // A test that waits for what never comes ends all the same.
      guard = timerfd_create(CLOCK_MONOTONIC, TFD_NONBLOCK);
      itimerspec limit{{}, {static_cast<time_t>(guardSeconds), 0}};
      timerfd_settime(guard, 0, &limit, nullptr);
      loop.descriptorIs(guard, EPOLLIN, [this](uint32_t) { loop.stop(); });
   }
   ~Bench() { close(guard); }

   PamMaker::Made make(const char* device) {
      return maker.make({IntfId(device), device, indexOf(device)}, config);
   }

   std::shared_ptr<Rex::ManualTime> time = std::make_shared<Rex::ManualTime>();
   Rex::Context context{Rex::make<Rex::Clock>(time)};
   Rex::ContextScope scope{context};
   Rex::Loop loop;
   PamConfig config;
   LinuxPamMaker maker{loop};
   int guard;
};

// Takes one frame in each run, and stops the loop at the wanted number.
class TakerSm : public Rex::StateMachine {
 public:
   TakerSm(Rex::Ptr<Wirekit::Pam> pam, Rex::Loop& loop, size_t wanted)
       : pam_(pam), loop_(loop), wanted_(wanted) {
      on(pam_, Wirekit::Pam::readableCountAttr, &TakerSm::handleReadableCount);
   }
   size_t taken = 0;
   std::function<void(Wirekit::Pkt&)> look;

 private:
   void handleReadableCount() {
      auto pkt = pam_->rxPkt();
      if (!pkt) return;
      ++taken;
      if (look) look(*pkt);
      if (taken == wanted_) loop_.stop();
   }
   Rex::Ptr<Wirekit::Pam> pam_;
   Rex::Loop& loop_;
   const size_t wanted_;
};

void send(Wirekit::Pam& pam, const Octets& frame) {
   pam.txPktIs(Wirekit::globalPktManager().newPkt(frame));
}

TEST(LinuxPam, carriesFramesBetweenDevices) {
   inNamespace([] {
      makeWire("a", "b");
      Bench bench;
      auto a = bench.make("a").pam;
      auto b = bench.make("b").pam;
      ASSERT_TRUE(a && b);
      std::vector<Octets> received;
      std::vector<int> vlans;
      auto taker = Rex::make<TakerSm>(b, bench.loop, 4);
      taker->look = [&](Wirekit::Pkt& pkt) {
         received.emplace_back(pkt.data().begin(), pkt.data().end());
         vlans.push_back(pkt.separateVlanTag() ? pkt.separateVlanTag()->vlanId() : -1);
      };
      Octets large = LldpFilter::frame(0x88CC, {}, 1514, 7);
      send(*a, LldpFilter::frame());
      send(*a, LldpFilter::frame(0x0800));
      send(*a, LldpFilter::frame(0x88CC, 100));
      send(*a, large);
      send(*a, LldpFilter::frame(0x88CC, {}, 1515));  // more than the device's MTU: lost
      send(*a, LldpFilter::frame(0x88CC, {}, 60, 9));
      bench.loop.run(bench.context);
      ASSERT_EQ(received.size(), 4u);
      EXPECT_EQ(received[0], LldpFilter::frame());
      EXPECT_EQ(received[1], LldpFilter::frame(0x88CC, {}, 56));
      EXPECT_EQ(received[2], large);
      EXPECT_EQ(received[3].back(), 9);
      EXPECT_EQ(vlans, (std::vector<int>{-1, 100, -1, -1}));
      EXPECT_EQ(a->rxFrames(), 0u);  // what we send ourselves is not received
      EXPECT_EQ(bench.maker.kernelDrops(), 0u);
   });
}

TEST(LinuxPam, aTagIsPutBackInLineUnlessAskedForBeside) {
   inNamespace([] {
      makeWire("a", "b");
      Bench bench;
      bench.config.separateDot1QHdr = false;
      auto a = bench.make("a").pam;
      auto b = bench.make("b").pam;
      Octets sent = LldpFilter::frame(0x88CC, 0x6064, 64, 5), received;
      auto taker = Rex::make<TakerSm>(b, bench.loop, 1);
      taker->look = [&](Wirekit::Pkt& pkt) {
         received.assign(pkt.data().begin(), pkt.data().end());
         EXPECT_FALSE(pkt.separateVlanTag());
      };
      send(*a, sent);
      bench.loop.run(bench.context);
      EXPECT_EQ(received, sent);
   });
}

TEST(LinuxPam, aFloodOnOnePortLeavesTheOthersAlive) {
   inNamespace([] {
      makeWire("a", "b");
      makeWire("c", "d");
      Bench bench;
      Wirekit::globalPktManager().memoryLimitIs(1000 * 2048);
      auto a = bench.make("a").pam;
      auto b = bench.make("b").pam;
      auto c = bench.make("c").pam;
      auto d = bench.make("d").pam;
      auto flooded = Rex::make<TakerSm>(b, bench.loop, SIZE_MAX);
      auto quiet = Rex::make<TakerSm>(d, bench.loop, 1);
      for (int i = 0; i < 20000; ++i) send(*a, LldpFilter::frame());
      send(*c, LldpFilter::frame());
      bench.loop.run(bench.context);
      EXPECT_EQ(quiet->taken, 1u);
      EXPECT_LT(flooded->taken, 200u);  // the flood had its turns, no more
      EXPECT_LE(b->rxFrames(), 501u);
      // The kernel now refuses the flood's frames before they take up memory.
      uint64_t drops = b->rxDrops();
      for (int i = 0; i < 1000; ++i) send(*a, LldpFilter::frame());
      send(*c, LldpFilter::frame());
      quiet = Rex::make<TakerSm>(d, bench.loop, 1);
      bench.loop.run(bench.context);
      EXPECT_EQ(b->rxDrops(), drops);
      // And takes them again when the queue is empty.
      while (b->rxPkt()) {
      }
      flooded->close();
      auto again = Rex::make<TakerSm>(b, bench.loop, 1);
      send(*a, LldpFilter::frame());
      bench.loop.run(bench.context);
      EXPECT_EQ(again->taken, 1u);
   });
}

}  // namespace
}  // namespace Interface
