// The feeders on real devices: virtual ones in a network namespace of each test's own.
#include <gtest/gtest.h>
#include <sys/epoll.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/timerfd.h>
#include <unistd.h>

#include <fstream>

#include "host/Feeders/Feeders.h"
#include "support/Namespace.h"
#include "support/TestContext.h"
#include "unit/HostFeedersFolder.h"

namespace Host {
namespace {

using namespace LldpTest;
using Wirekit::IntfId;

constexpr int guardSeconds = 20;

struct Bench {
   explicit Bench(std::set<std::string> devices = {},
                  std::set<std::string> enabled = Feeders::all())
       : feeders({manager, loop, names, std::move(enabled), std::move(devices)}) {
      // A test that waits for what never comes ends all the same.
      guard = timerfd_create(CLOCK_MONOTONIC, TFD_NONBLOCK);
      loop.descriptorIs(guard, EPOLLIN, [this](uint32_t) { over = true; });
      // Wakes the loop to look.
      tick = timerfd_create(CLOCK_MONOTONIC, TFD_NONBLOCK);
      itimerspec often{{0, 5'000'000}, {0, 5'000'000}};
      timerfd_settime(tick, 0, &often, nullptr);
      loop.descriptorIs(tick, EPOLLIN, [this](uint32_t) {
         uint64_t times;
         EXPECT_GT(read(tick, &times, sizeof(times)), 0);
         if (over || reached()) loop.stop();
      });
   }
   ~Bench() {
      close(guard);
      close(tick);
   }

   // Runs the loop until something holds; false when it does not in good time.
   bool until(std::function<bool()> condition) {
      reached = std::move(condition);
      itimerspec limit{{}, {guardSeconds, 0}};
      timerfd_settime(guard, 0, &limit, nullptr);
      loop.run(context.context());
      return reached();
   }
   template <class T>
   Rex::Ptr<T> get(const char* path) {
      return Rex::dynamicPtr<T>(manager->getEntity(path));
   }
   auto phy(const char* port) {
      return get<Interface::AllEthPhyIntfStatusDir>("interface/status/eth/phy/all")
          ->intfStatus(IntfId(port));
   }
   int ifIndex(const char* port) {
      auto row = get<Interface::AllIntfStatusDir>("interface/status/all")->intfStatus(IntfId(port));
      return row ? row->ifIndex() : 0;
   }
   std::string description(const char* port) {
      return get<Interface::AllEthPhyIntfConfigDir>("interface/config/eth/phy/all")
          ->intfConfig(IntfId(port))
          ->description()
          .stdString();
   }

   TestContext context;
   Rex::Loop loop;
   Rex::Ptr<Statestore::EntityManager> manager = Rex::make<Statestore::EntityManager>();
   TestFolder folder;
   PortNames names{{}, folder.path + "/ports.json"};
   Feeders feeders;
   std::function<bool()> reached;
   bool over = false;
   int guard;
   int tick;
};

// Leaves the process's netlink sockets hardly any room.
void shrinkNews() {
   for (int fd = 3; fd < 256; ++fd) {
      int domain = 0, room = 4096;
      socklen_t size = sizeof(domain);
      if (getsockopt(fd, SOL_SOCKET, SO_DOMAIN, &domain, &size) < 0 || domain != AF_NETLINK)
         continue;
      ASSERT_EQ(setsockopt(fd, SOL_SOCKET, SO_RCVBUF, &room, sizeof(room)), 0);
   }
}

// While it lives the process opens nothing more.
struct NoMoreDescriptors {
   NoMoreDescriptors() {
      int next = dup(0);
      close(next);
      getrlimit(RLIMIT_NOFILE, &before);
      rlimit now{static_cast<rlim_t>(next), before.rlim_max};
      setrlimit(RLIMIT_NOFILE, &now);
   }
   ~NoMoreDescriptors() { setrlimit(RLIMIT_NOFILE, &before); }
   rlimit before{};
};

TEST(FeedersLinux, theStoreIsFullAtTheStart) {
   inNamespace([] {
      makePair("a", "b");
      ip("link set dev a mtu 9000 address 02:00:00:00:00:0a alias 'to the core'");
      ip("link add name c type veth peer name Ethernet7");
      ip("link add name br0 type bridge");
      sethostname("sw1.example.com", 15);
      Bench bench;
      bench.feeders.start();
      // In the order of their indices; of a pair the second end comes first.
      ASSERT_EQ(bench.feeders.ports().size(), 4u);
      EXPECT_EQ(bench.feeders.ports().at(IntfId("Ethernet7")), "Ethernet7");
      EXPECT_FALSE(bench.feeders.ports().contains(IntfId("Ethernet4")));
      auto ports = bench.feeders.ports();
      auto at = std::ranges::find(ports, "a", [](const auto& port) { return port.second; });
      ASSERT_NE(at, ports.end());
      std::string a = at->first.stringValue().stdString();
      auto phy = bench.phy(a.c_str());
      EXPECT_EQ(phy->linkStatus(), Interface::linkUp);
      EXPECT_EQ(phy->forwardingModel(), 3);
      EXPECT_EQ(phy->maxMtu(), 9000);
      EXPECT_EQ(phy->ethAddr(), Wirekit::EthAddr(2, 0, 0, 0, 0, 10));
      EXPECT_EQ(bench.ifIndex(a.c_str()), indexOf("a"));
      EXPECT_EQ(bench.description(a.c_str()), "to the core");
      EXPECT_EQ(bench.phy("Ethernet7")->linkStatus(), Interface::linkDown);
      auto bridging = bench.get<Bridging::Config>("bridging/config");
      EXPECT_FALSE(bridging->bridgeMacAddr().isZero());
      EXPECT_EQ(bench.get<Bridging::HwCapabilities>("bridging/hwcapabilities")->maxFrameSize(),
                9018);
      auto net = bench.get<System::NetStatus>("cell/1/sys/net/status");
      EXPECT_EQ(net->hostname(), "sw1");
      EXPECT_EQ(net->domainName(), "example.com");
      EXPECT_NE(bench.get<EntityMib::Status>("hardware/entmib")->description().view().find("Linux"),
                std::string_view::npos);
      for (const std::string& path : bench.feeders.fedPaths()) {
         EXPECT_TRUE(bench.manager->getEntity(path)) << path;
      }
   });
}

TEST(FeedersLinux, changesAreFollowed) {
   inNamespace([] {
      makePair("a", "b");
      Bench bench({"a"});
      bench.feeders.start();
      auto phy = bench.phy("Ethernet1");
      ip("link set dev b down");
      EXPECT_TRUE(bench.until([&] { return phy->linkStatus() == Interface::linkDown; }));
      EXPECT_EQ(phy->forwardingModel(), 3) << "a port without a link is a port";
      ip("link set dev b up");
      EXPECT_TRUE(bench.until([&] { return phy->linkStatus() == Interface::linkUp; }));
      ip("link set dev a mtu 1600 address 02:00:00:00:00:77 alias spine");
      EXPECT_TRUE(bench.until([&] { return bench.description("Ethernet1") == "spine"; }));
      EXPECT_EQ(phy->maxMtu(), 1600);
      EXPECT_EQ(phy->ethAddr(), Wirekit::EthAddr(2, 0, 0, 0, 0, 0x77));

      // A member of a bridge is a port all the same, and the switch's address is the bridge's. The
      // news of a port that leaves a bridge look much like those of a device that goes.
      auto bridging = bench.get<Bridging::Config>("bridging/config");
      ip("link add name br0 address 02:00:00:00:00:bb type bridge");
      ip("link set dev a master br0");
      EXPECT_TRUE(bench.until([&] { return bridging->bridgeMacAddr().byte(5) == 0xbb; }));
      ip("link set dev a nomaster");
      EXPECT_TRUE(bench.until([&] { return bridging->bridgeMacAddr().byte(5) == 0x77; }));
      EXPECT_EQ(bench.phy("Ethernet1"), phy);

      auto net = bench.get<System::NetStatus>("cell/1/sys/net/status");
      sethostname("leaf-9", 6);
      EXPECT_TRUE(bench.until([&] { return net->hostname() == "leaf-9"; }));
      EXPECT_FALSE(bench.over);
   });
}

TEST(FeedersLinux, aDeviceVanishesAndReturns) {
   inNamespace([] {
      makePair("a", "b");
      Bench bench({"a"});
      bench.feeders.start();
      for (const char* leave : {
               "ip link del dev a",
               "ip link set dev a down && ip link set dev a name x",
               // Another namespace, which goes with the process that has it.
               "unshare -n sleep 5 & sleep 0.2; ip link set dev a netns $!",
           }) {
         int before = bench.ifIndex("Ethernet1");
         EXPECT_EQ(before, indexOf("a"));
         ASSERT_EQ(std::system(leave), 0);
         EXPECT_TRUE(bench.until([&] { return !bench.phy("Ethernet1"); })) << leave;
         EXPECT_TRUE(bench.feeders.ports().empty());
         if (indexOf("b")) ip("link del dev b");
         makePair("a", "b");
         EXPECT_TRUE(bench.until([&] { return bool(bench.phy("Ethernet1")); })) << leave;
         EXPECT_NE(bench.ifIndex("Ethernet1"), before);
      }
   });
}

// The interface's addresses as they are told: the active one first.
std::string addresses(Bench& bench, const char* intf) {
   std::string all;
   if (auto row = bench.get<Ip::Status>("ip/status")->ipIntfStatus(IntfId(intf))) {
      all = row->activeAddrWithMask().stringValue().stdString();
      for (auto [addr, counts] : row->secondaryWithMask()) {
         all += " " + addr.stringValue().stdString();
      }
   }
   if (auto row = bench.get<Ip6::Status>("ip6/status")->ipIntfStatus(IntfId(intf))) {
      for (auto [addr, info] : row->addr()) {
         if (!addr.addr().isLinkLocal()) all += " " + addr.stringValue().stdString();
      }
   }
   return all;
}

TEST(FeedersLinux, addressesAreFollowed) {
   inNamespace([] {
      makePair("a", "b");
      ip("link set dev lo up");
      ip("addr add 10.9.9.9/32 dev lo");
      ip("addr add 10.0.0.1/24 dev a");
      ip("addr add 10.0.0.2/24 dev a");
      ip("link add name br0 type bridge");
      Bench bench({"a"});
      bench.feeders.start();
      auto tells = [&](const char* intf, const std::string& expected) {
         bool told = bench.until([&] { return addresses(bench, intf) == expected; });
         EXPECT_TRUE(told) << addresses(bench, intf) << " instead of " << expected;
      };
      tells("Ethernet1", "10.0.0.1/24 10.0.0.2/24");
      tells("Loopback0", "10.9.9.9/32");
      ip("addr add 10.1.0.1/24 dev br0");
      tells("Vlan1", "10.1.0.1/24");
      ip("addr add 2001:db8::1/64 dev a");
      ip("addr add 10.0.0.3/24 dev a");
      tells("Ethernet1", "10.0.0.1/24 10.0.0.2/24 10.0.0.3/24 2001:db8::1/64");
      ASSERT_EQ(std::system("echo 1 > /proc/sys/net/ipv4/conf/all/promote_secondaries"), 0);
      ip("addr del 10.0.0.1/24 dev a");
      tells("Ethernet1", "10.0.0.2/24 10.0.0.3/24 2001:db8::1/64");
      ASSERT_EQ(std::system("echo 0 > /proc/sys/net/ipv4/conf/all/promote_secondaries; "
                            "echo 0 > /proc/sys/net/ipv4/conf/a/promote_secondaries"),
                0);
      ip("addr del 10.0.0.2/24 dev a");
      ip("addr del 2001:db8::1/64 dev a");
      tells("Ethernet1", "0.0.0.0/0");
      ip("link del dev br0");
      EXPECT_TRUE(bench.until([&] { return bench.ifIndex("Vlan1") == 0; }));
      EXPECT_EQ(addresses(bench, "Vlan1"), "");
   });
}

// More changes than there is room for, and nobody listens meanwhile; `last` come at their end.
void ipFlood(Bench& bench, const std::string& last) {
   std::ofstream batch(bench.folder.path + "/batch");
   for (int i = 0; i < 300; ++i) batch << "link set dev a mtu " << 1400 + i % 2 << "\n";
   batch << last;
   batch.close();
   ip("-batch " + bench.folder.path + "/batch");
}

// More news than the kernel keeps for us: afterwards everything is as it is, all the same.
TEST(FeedersLinux, lostNews) {
   inNamespace([] {
      makePair("a", "b");
      makePair("c", "d");
      Bench bench({"a", "c"});
      bench.feeders.start();
      IntfId a = bench.feeders.ports().begin()->first;
      shrinkNews();
      ip("addr add 10.0.0.1/24 dev a");
      ip("addr add 10.0.0.9/24 dev c");
      ipFlood(bench,
              "link del dev c\naddr add 10.0.0.2/24 dev a\n"
              "link set dev a mtu 1333\n");
      bench.context.takeLogs();
      EXPECT_TRUE(bench.until([&] {
         return bench.feeders.ports().size() == 1 && bench.phy("Ethernet1")->maxMtu() == 1333;
      }));
      auto logs = bench.context.takeLogs();
      ASSERT_FALSE(logs.empty()) << "nothing was lost, so nothing was tested";
      EXPECT_TRUE(logs.front().starts_with("HOST_LINK_NEWS_LOST")) << logs.front();
      EXPECT_EQ(addresses(bench, "Ethernet1"), "10.0.0.1/24 10.0.0.2/24");
      EXPECT_EQ(addresses(bench, "Ethernet2"), "");
      // The news go on.
      ip("link set dev a mtu 1444");
      ip("addr add 10.0.0.3/24 dev a");
      EXPECT_TRUE(bench.until([&] { return bench.phy("Ethernet1")->maxMtu() == 1444; }));
      EXPECT_TRUE(bench.until(
          [&] { return addresses(bench, "Ethernet1") == "10.0.0.1/24 10.0.0.2/24 10.0.0.3/24"; }));
   });
}

// What cannot be read anew is tried again, each time after twice as long.
TEST(FeedersLinux, lostNewsThatCannotBeReadAnewAtOnce) {
   inNamespace([] {
      makePair("a", "b");
      Bench bench({"a"});
      bench.feeders.start();
      shrinkNews();
      ipFlood(bench, "link set dev a mtu 1333\n");
      bench.context.takeLogs();
      auto mtuAfter = [&](double seconds) {
         bench.context.timeIs(bench.context.now() + seconds);
         int turns = 0;
         EXPECT_TRUE(bench.until([&] { return ++turns > 4; }));
         return bench.phy("Ethernet1")->maxMtu();
      };
      {
         NoMoreDescriptors none;
         EXPECT_NE(mtuAfter(0), 1333u);
         ASSERT_FALSE(bench.context.takeLogs().empty()) << "nothing was lost";
         EXPECT_NE(mtuAfter(0.11), 1333u);  // tried in vain
      }
      EXPECT_NE(mtuAfter(0.11), 1333u);
      EXPECT_EQ(mtuAfter(0.1), 1333u);
   });
}

}  // namespace
}  // namespace Host
